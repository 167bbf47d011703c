// A group of options in a form: radio buttons, check boxes or a popup selection.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPOption;

namespace DisplayAPI {
class ChoiceGroup;
class Image;
class MenuCommand;
class SelectionField;
} // namespace DisplayAPI

// Widgets live from initialization (or redisplay) to hiding; once appended they belong to the
// form widget, and one that never entered a form is deleted here. The popup entries belong to
// the group and live as long as it does (a selection field only refers to them). All of it is
// touched only on the group's queue thread.
class AGPIppChoiceGroup : public AGPCommonBase, public AGPDisplayItemIfc, public AGPKeyValueProviderIfc {
public:
    enum AGPNumbered : std::int32_t { NUMBERED_NO = 0, NUMBERED_YES = 1 };
    enum AGPType : std::int32_t { EXCLUSIVE = 0, MULTIPLE = 1, POPUP = 2 };

    AGPIppChoiceGroup();
    AGPIppChoiceGroup(const AGPIppChoiceGroup&) = delete;
    AGPIppChoiceGroup& operator=(const AGPIppChoiceGroup&) = delete;
    ~AGPIppChoiceGroup() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppChoiceGroup; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return mLabelCount.isCountValid() && mOptionCount.isCountValid(); }
    void initializeElement() override { createAndInitDisplayElements(true); }
    void processElement() override { createAndInitDisplayElements2ndRound(); }
    void processMessage(AGPMessage& /*message*/) override {}
    void hideElement() override;
    void reDisplayElement() override { createAndInitDisplayElements(false); }
    void reDisplayElement2ndRound() override;

    // The selection field of a popup group, else the choice group widget.
    DisplayAPI::Item* getDisplayItem() override;
    void performCancel() override;
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    void createAndInitDisplayElements(bool fromDocument);
    void createAndInitDisplayElements2ndRound();
    // Shows `picture` on the entry of `option` once its download arrived; nothing without widget
    // or when the option is not shown.
    void setOptionPicture(AGPOption* option, DisplayAPI::Image* picture);
    // The chosen indexes of the widget; nothing without widget.
    void getSelIdxs(std::vector<int>& out);

    AGPType getAGPType() const { return mType; }
    void setAGPType(AGPType type) { mType = type; }
    std::uint32_t getAGPCount() const { return mCount; }
    void setAGPCount(std::uint32_t count) { mCount = count; }
    AGPNumbered getAGPNumbered() const { return mNumbered; }
    static AGPType parseAGPType(const std::string& text);
    static std::uint32_t parseAGPCount(const std::string& text);
    static AGPNumbered parseAGPNumbered(const std::string& text);

private:
    std::vector<AGPOption*> options();
    // The number of options shown: "Count", at most the number of options.
    std::size_t shownCount(std::size_t options) const;
    std::string label();
    void releaseWidgets();

    AGPChildCount mLabelCount;
    AGPChildCount mOptionCount;
    AGPNumbered mNumbered;
    AGPType mType;
    std::uint32_t mCount;
    DisplayAPI::ChoiceGroup* mChoiceGroup;
    DisplayAPI::SelectionField* mSelectionField;
    std::vector<DisplayAPI::MenuCommand*> mPopupEntries;
    std::vector<int> mSavedSelection;
};
