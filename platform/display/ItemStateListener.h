// The application's receiver of finished edits of form items.
#pragma once

namespace DisplayAPI {

class Item;

// Called on the platform's event thread when the user has finished changing an item: an edit
// confirmed, a choice toggled or chosen, a slider moved. Never per keystroke. The item stays alive
// until the call returns, even when another thread deletes it meanwhile (the delete waits).
class ItemStateListener {
public:
    virtual void itemStateChanged(Item* item) = 0;
    virtual ~ItemStateListener() = default;
};

} // namespace DisplayAPI
