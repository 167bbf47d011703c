// A form item that shows one entry of a list of menu commands and lets the user pick another.
#pragma once

#include <string>
#include <vector>

#include "display/Item.h"
#include "display/MenuModel.h"

class TranslationInfo;

namespace DisplayAPI {

class Form;
class MenuCommand;

// Serves as the options field of a form (Ok reports to the application, Left/Right browse), as
// a popup choice (Ok opens the entries, choosing one is an item change) and as the soft-key
// options of a form. Entries are not owned.
class SelectionField : public Item {
public:
    // `label` may be null. `selectionCommand` stands for the selection while there are no
    // entries. `form` is the form the field belongs to (may be null); `reserved` has no effect.
    SelectionField(const TranslationInfo* label, MenuCommand* selectionCommand, Form* form, bool reserved);
    ~SelectionField() override;

    void appendSelection(MenuCommand* command);
    void clearSelections();
    std::vector<Command*> getSelections() const;
    // -1 without entries.
    int getSelectionIndex() const;
    // Out-of-range indexes are ignored.
    void setSelectionIndex(int index);
    // The entry at the selection index (the selection command while there is none).
    Command* getSelectionCommand() const;
    // Phones with a soft-key bar: Ok never opens the entries (they are on the soft keys).
    void setContextMenuSuppressed();
    bool isPopupOpen() const;

    const char* kind() const override { return "selectionField"; }

    // ---- Used by the library itself. ----
    bool isCapturingKeys() const override { return mPopupOpen; }
    bool itemKey(Key key) override;
    void focusLeaves() override { mPopupOpen = false; }

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    void choose(int index);

    MenuModel mEntries;
    int mSelection = -1;
    core::Ref<Command> mSelectionCommand;
    bool mSuppressed = false;
    bool mPopupOpen = false;
    MenuModel mPopup;
};

} // namespace DisplayAPI
