// A screen of labelled items (text fields, choices, sliders, images) with one focused item.
#pragma once

#include <memory>
#include <vector>

#include "display/Command.h"
#include "display/Displayable.h"

namespace DisplayAPI {

class ChoiceGroup;
class Item;
class SelectionField;

class Form : public Displayable {
public:
    // Width of the label column against the value column.
    enum FormProportionType {
        PROPORTION_DEFAULT = 0,
        PROPORTION_50_50 = 1,
        PROPORTION_60_40 = 2,
        PROPORTION_75_25 = 3,
        PROPORTION_25_75 = 4,
        PROPORTION_15_85 = 5,
        PROPORTION_0_100 = 6,
    };

    explicit Form(FormProportionType proportion = PROPORTION_DEFAULT);
    // Deletes the items and the soft-key options field; commands and images stay the caller's.
    ~Form() override;

    // The form owns items from here on. An item already in a form is refused.
    void append(Item* item);
    void appendChoiceGroup(ChoiceGroup* group);
    // At `index` (clamped to 0..size); the focused item stays focused.
    void insertItem(Item* item, int index);
    int size() const;
    Item* getItem(int index) const;
    // The focused item, or null.
    Item* getSelected() const;
    // Focuses `item` when it is one of this form's focusable items.
    void setSelected(Item* item);
    // Phones with a soft-key bar: the entries of `options` are offered on the soft keys before
    // the form's own commands; choosing one delivers its MenuCommand with the form. The form owns
    // the field (unless it is also one of its items) and deletes a field it replaces.
    void setFormOptions(SelectionField* options);
    SelectionField* getFormOptions() const;
    // Kept for the application's sake; no visible effect.
    void setAlternativeCommandHandling(bool alternative);
    void setCurrentLanguageFixed();
    FormProportionType getProportion() const;

    // Delivered (type SCREEN) with the form whenever the user moves the focus to another item.
    static Command* CURRENT_ITEM_CHANGED_COMMAND();

    const char* kind() const override { return "form"; }
    void restoreFocusAndShowHighlight() override;

    // ---- Used by the library itself. ----
    bool handleText(const std::string& text, bool replace) override;
    void forgetItem(Item* item);

protected:
    bool onKey(Key key) override;
    std::vector<Command*> softKeyCommands() const override;
    void describeContent(nlohmann::json& out) const override;

private:
    bool moveFocus(int step);
    void focusFirstIfNone();
    SelectionField* formOptions() const;
    void reportOk(Item* focused);

    FormProportionType mProportion;
    std::vector<Item*> mItems;
    int mFocus = -1;
    core::Ref<Displayable> mFormOptions; // a SelectionField
    // OK on an item of an element of its own: carries the form's owner id, delivered without a
    // widget. Made on first use, deleted with the form (which drops a callback still on its way).
    std::unique_ptr<Command> mItemOkCommand;
};

} // namespace DisplayAPI
