// The full-screen form: a title and labelled input items, with options, popup confirm and alert.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPDisplayable.h"

class AGPDisplayItemIfc;
class AGPIppItem;

namespace DisplayAPI {
class Alert;
class Command;
class Form;
class Item;
class MenuCommand;
class PopupConfirm;
class SelectionField;
} // namespace DisplayAPI

class AGPIppForm : public AGPDisplayable {
public:
    enum AGPProportion : std::int32_t {
        PROPORTION_DEFAULT = 0,
        PROPORTION_50_50 = 1,
        PROPORTION_60_40 = 2,
        PROPORTION_75_25 = 3,
        PROPORTION_25_75 = 4,
        PROPORTION_15_85 = 5,
        PROPORTION_0_100 = 6
    };

    AGPIppForm();
    AGPIppForm(const AGPIppForm&) = delete;
    AGPIppForm& operator=(const AGPIppForm&) = delete;
    ~AGPIppForm() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppForm; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void setTickerElement(AGPIppTicker& ticker) override;
    void setCommandElement(AGPIppCommand& command) override;
    void startTimer() override;
    void stopTimer() override;
    void setHighlight(bool on) override;
    void restoreFocusAndHighlight() override;
    bool isContextMenuDisplayed() override;
    bool isPopupMenuDisplayed() override { return mPopupMenuDisplayed; }
    void pushRequestIndication() override;
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override;
    bool hasBack() override { return mHasBack; }

    bool isValidContainer() { return isCountValidAGPTitle() && isCountValidAGPUrl() && isCountValidChoice(); }
    bool isCountValidAGPTitle() { return mTitleCount.isCountValid(); }
    bool isCountValidAGPUrl() { return mUrlCount.isCountValid(); }
    bool isCountValidChoice() { return mChoiceCount.isCountValid(); }

    std::uint32_t getAGPItemCount() const { return mItemCount; }
    void setAGPItemCount(std::uint32_t count) { mItemCount = count; }
    AGPProportion getAGPProportion() const { return mProportion; }
    void setAGPProportion(AGPProportion proportion) { mProportion = proportion; }
    static std::uint32_t parseAGPItemCount(const std::string& text);
    static AGPProportion parseAGPProportion(const std::string& text);

    void createAndInitDisplayElements();
    void createAndInitDisplayElements2ndRound();
    void deleteDisplayElements();
    void destroyAlert();
    void addChoiceGroup(DisplayAPI::Item* group);
    void initOptionsField(AGPIppCommand& command);
    void initPopupConfirm();
    void addOptionComamnds();
    void addPopupCommands();
    DisplayAPI::SelectionField* softKeyFormOptions();
    void addToSoftKeyFormOptions(DisplayAPI::MenuCommand* command);
    void updateSoftKeyFormOptions(const std::vector<AGPIppCommand*>& commands);
    void findAndAddCommandsDisplayedOn(std::vector<AGPIppCommand*>& commands,
                                       const AGPIppCommand::AGPDisplayOn* values, int count);
    AGPIppCommand* getSelectedIppCommand();
    void handleBackCommand(DisplayAPI::Command* command, bool bringToFront);
    void handleCancelCommand();
    bool isMessageValidForChangingScreen(const AGPMessage& message);
    // False when a password and its confirmation differ; the pairs are added either way.
    bool gatherKeyValues(std::multimap<std::string, std::string>& keyValues, AGPMessage& message);
    bool gatherCommandKeyValues(std::multimap<std::string, std::string>& keyValues, AGPMessage& message,
                                AGPIppItem*& item);
    void gatherUpdateCommandKeyValues(std::multimap<std::string, std::string>& keyValues,
                                      AGPMessage& message);
    void performOkPressedOnButton(AGPCommonBase* element, std::multimap<std::string, std::string>& keyValues);
    // `item` is the item whose input is wrong (rolled back on Cancel), or null.
    void showAlert(std::string title, const std::string& text, AGPDisplayItemIfc* item, bool bringToFront);

    DisplayAPI::Form* getForm() const { return mForm; }

protected:
    void addSelectedPairs(std::multimap<std::string, std::string>& keyValues) override;

private:
    bool addAGPTitle(AGPCommonBase& child) { return addCountedChild(mTitleCount, child); }
    bool addAGPUrl(AGPCommonBase& child) { return addCountedChild(mUrlCount, child); }
    bool addChoice(AGPCommonBase& child) { return addCountedChild(mChoiceCount, child); }
    void distribute(AGPIppCommand* command);
    AGPCommonBase* findFocusedElement();
    bool isOptionsFieldFocused();
    void showForm(AGPMessage::MessageType type, bool bringToFront);
    void addProviderPairs(AGPCommonBase* element, std::multimap<std::string, std::string>& keyValues);

    AGPChildCount mTitleCount;
    AGPChildCount mUrlCount;
    AGPChildCount mChoiceCount;
    std::uint32_t mItemCount;
    AGPProportion mProportion;
    DisplayAPI::Form* mForm;
    std::vector<AGPIppCommand*> mOptionCommands;
    DisplayAPI::SelectionField* mOptionsField;
    std::vector<AGPIppCommand*> mPopupCommands;
    DisplayAPI::PopupConfirm* mPopupConfirm;
    DisplayAPI::Alert* mAlert;
    DisplayAPI::Command* mAlertCancelCommand;
    AGPDisplayItemIfc* mAlertItem;
    bool mHasBack;
    bool mPopupMenuDisplayed;
    DisplayAPI::SelectionField* mSoftKeyFormOptions;
};
