// Interface through which a form reaches the widget and the edit state of one of its items.
#pragma once

namespace DisplayAPI {
class Item;
}

class AGPDisplayItemIfc {
public:
    // Null while the widget does not exist.
    virtual DisplayAPI::Item* getDisplayItem() = 0;
    virtual void setContextMenuArrowIcon(bool /*shown*/) {}
    // Throws away what the user changed since the last commit.
    virtual void performCancel() {}
    virtual void commit() {}
    virtual void rollback() {}

protected:
    ~AGPDisplayItemIfc() = default;
};
