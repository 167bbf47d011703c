// The base of form items: label, focus rules, Ok reporting and the finished-edit notice.
#pragma once

#include <optional>
#include <string>

#include "display/Displayable.h"
#include "text/TranslationInfo.h"

namespace DisplayAPI {

class Form;

class Item : public Displayable {
public:
    ~Item() override;

    void setLabel(const std::string& label);
    // Translated whenever the item is drawn, so a later language change reaches it.
    void setLabel(const TranslationInfo& label);
    std::string getLabel() const;
    // With true, Ok on the focused item is reported to the form's command listener as an OK
    // command with the form, instead of being handled by the item.
    void setInformAppOnOk(bool inform);
    bool isInformAppOnOk() const;
    // Items that are not selectable never take the focus (spacers).
    void setSelectable(bool selectable);
    bool isSelectable() const;
    // The form that owns the item, or null.
    Form* getForm() const;

    // ---- Used by the library itself; callers hold the library lock. ----
    void attachTo(Form* form) { mForm = form; }
    virtual bool isFocusable() const { return mSelectable; }
    // While true, the item gets every key first (an edit or an open choice popup).
    virtual bool isCapturingKeys() const { return false; }
    // A key for the focused item; false leaves it to the form.
    virtual bool itemKey(Key /*key*/) { return false; }
    // Moves the focus between the rows of the item (choice groups); false at its edge.
    virtual bool moveInside(int /*step*/) { return false; }
    // The focus arrives from above (step 1) or below (step -1).
    virtual void focusArrives(int /*step*/) {}
    // The focus leaves: an edit in progress is finished.
    virtual void focusLeaves() {}
    void describe(nlohmann::json& out) const override;

protected:
    Item();
    // Queues itemStateChanged(this) to the form's item state listeners.
    void notifyStateChanged();

private:
    std::string mLabel;
    std::optional<TranslationInfo> mTranslatedLabel;
    bool mInformAppOnOk = false;
    bool mSelectable = true;
    Form* mForm = nullptr;
};

} // namespace DisplayAPI
