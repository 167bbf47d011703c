// The full-screen text entry (or read-only text) element, shown in one widget text box.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPDisplayable.h"

class AGPDefault;
class AGPKey;

namespace DisplayAPI {
class Alert;
class Command;
class PopupConfirm;
class TextBox;
} // namespace DisplayAPI

class AGPIppTextBox : public AGPDisplayable {
public:
    enum AGPConstraint : std::int32_t {
        CONSTRAINT_ANY = 0,
        NUMERIC = 1,
        PASSWORD = 2,
        PHONENUMBER = 3,
        URL = 4,
        EMAILADDR = 5
    };
    enum AGPPassword : std::int32_t { PASSWORD_YES = 0, PASSWORD_NO = 1 };
    enum AGPUneditable : std::int32_t { UNEDITABLE_YES = 0, UNEDITABLE_NO = 1 };
    enum AGPExitAppearance : std::int32_t { EXIT_NONE = 0, EXIT_CONTEXT = 1, EXIT_BOTH = 2 };

    static constexpr std::uint32_t MAXSIZE_DEFAULT = 1024;
    static constexpr std::uint32_t MAXSIZE_LIMIT = 5120;

    AGPIppTextBox();
    AGPIppTextBox(const AGPIppTextBox&) = delete;
    AGPIppTextBox& operator=(const AGPIppTextBox&) = delete;
    ~AGPIppTextBox() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppTextBox; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool addContent(std::string& text) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;
    void reDisplayElement2ndRound() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void setCommandElement(AGPIppCommand& command) override;
    void setTickerElement(AGPIppTicker& ticker) override;
    void setHighlight(bool on) override;
    void restoreFocusAndHighlight() override;
    bool isContextMenuDisplayed() override;
    bool isPopupMenuDisplayed() override;
    void pushRequestIndication() override;
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override;
    // A text box never keeps the history alive by itself: only a BACK command on its screen does.
    bool hasBack() override { return false; }

    bool isValidContainer() {
        return isCountValidAGPTitle() && isCountValidAGPText() && isCountValidAGPUrl();
    }
    bool isCountValidAGPTitle() { return mTitleCount.isCountValid(); }
    bool isCountValidAGPText() { return mTextCount.isCountValid(); }
    bool isCountValidAGPUrl() { return mUrlCount.isCountValid(); }

    void setAGPMaxSize(std::uint32_t maxSize) { mMaxSize = maxSize; }
    std::uint32_t getAGPMaxSize() const { return mMaxSize; }
    void setAGPConstraint(AGPConstraint constraint) { mConstraint = constraint; }
    AGPConstraint getAGPConstraint() const { return mConstraint; }
    void setAGPPassword(AGPPassword password) { mPassword = password; }
    AGPPassword getAGPPassword() const { return mPassword; }
    void setAGPUneditable(AGPUneditable uneditable) { mUneditable = uneditable; }
    AGPUneditable getAGPUneditable() const { return mUneditable; }
    void setAGPExitAppearance(AGPExitAppearance appearance) { mExitAppearance = appearance; }
    AGPExitAppearance getAGPExitAppearance() const { return mExitAppearance; }
    AGPDefault* getAGPDefault() const { return mDefault; }
    AGPKey* getAGPKey() const { return mKey; }
    // The text the user confirmed last: what requests send and Cancel returns to.
    const std::string& getConfirmedText() const { return mText; }
    DisplayAPI::TextBox* getTextBox() const { return mTextBox; }

    static std::uint32_t parseAGPMaxSize(const std::string& text);
    static AGPConstraint parseAGPConstraint(const std::string& text);
    static AGPPassword parseAGPPassword(const std::string& text);
    static AGPUneditable parseAGPUneditable(const std::string& text);
    static AGPExitAppearance parseAGPExitAppearance(const std::string& text);

    void createAndInitDisplayElements();
    void createAndInitDisplayElements2ndRound(std::string& text);
    void deleteDisplayElements();
    void initPopupConfirm();
    void addOptionComamnds();
    void addPopupCommands();
    AGPIppCommand* getSelectedIppCommand(DisplayAPI::Command* command);
    void handleBackCommand(DisplayAPI::Command* command, bool bringToFront);
    void handleCancelCommand(bool fromTimer, bool bringToFront);
    // The initial text as the document gives it; also becomes the confirmed text.
    std::string getTextFromXml();
    void showAlert(std::string title, const std::string& text, bool bringToFront);
    void destroyAlert();

protected:
    void addSelectedPairs(std::multimap<std::string, std::string>& keyValues) override;

private:
    bool addAGPTitle(AGPCommonBase& child) { return addCountedChild(mTitleCount, child); }
    bool addAGPText(AGPCommonBase& child) { return addCountedChild(mTextCount, child); }
    bool addAGPUrl(AGPCommonBase& child) { return addCountedChild(mUrlCount, child); }
    void showTextBox(AGPMessage::MessageType type, bool bringToFront);
    // The pair the text box adds to a request: its key (or "null") and the confirmed text.
    void addTextPair(std::multimap<std::string, std::string>& keyValues);

    AGPChildCount mTitleCount;
    AGPChildCount mTextCount;
    AGPChildCount mUrlCount;
    std::uint32_t mMaxSize;
    AGPConstraint mConstraint;
    AGPPassword mPassword;
    AGPUneditable mUneditable;
    AGPDefault* mDefault;
    AGPKey* mKey;
    AGPExitAppearance mExitAppearance;
    std::vector<AGPIppCommand*> mCommands;
    std::vector<AGPIppCommand*> mOptionCommands;
    std::vector<AGPIppCommand*> mPopupCommands;
    bool mPopupMenuDisplayed;
    std::string mText;
    DisplayAPI::PopupConfirm* mPopupConfirm;
    DisplayAPI::TextBox* mTextBox;
    DisplayAPI::Alert* mAlert;
    DisplayAPI::Command* mAlertCancelCommand;
};
