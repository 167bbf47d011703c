// The full-screen message element: title, text and picture in one widget alert, closing itself or by a
// command.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AGPDisplayable.h"
#include "AGPImageStateListenerIfc.h"

namespace DisplayAPI {
class Alert;
class Command;
class Image;
} // namespace DisplayAPI

class AGPIppAlert : public AGPDisplayable, public AGPImageStateListenerIfc {
public:
    enum AGPType : std::int32_t { ALARM = 0, CONFIRMATION = 1, TYPE_OTHER = 2, INFO = 3, WARNING = 4 };

    // No automatic closing.
    static const std::int32_t AGPDelay_FOREVER = 0;

    AGPIppAlert();
    AGPIppAlert(const AGPIppAlert&) = delete;
    AGPIppAlert& operator=(const AGPIppAlert&) = delete;
    ~AGPIppAlert() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppAlert; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool addContent(std::string& text) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    void processElement() override;
    void processMessage(AGPMessage& message) override;
    // The widget stays while the alert lives: a cached alert is shown again as it was.
    void hideElement() override {}
    void reDisplayElement() override;

    DisplayAPI::Displayable* getDisplayAPIDisplayable() override;
    void setCommandElement(AGPIppCommand& command) override;
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override;

    void imageDownloaded(unsigned long agpId) override;

    bool isValidContainer() {
        return isCountValidAGPTitle() && isCountValidAGPUrl() && isCountValidAGPText() &&
               isCountValidAGPImage();
    }
    bool isCountValidAGPTitle() { return mTitleCount.isCountValid(); }
    bool isCountValidAGPUrl() { return mUrlCount.isCountValid(); }
    bool isCountValidAGPText() { return mTextCount.isCountValid(); }
    bool isCountValidAGPImage() { return mImageCount.isCountValid(); }

    void setAGPType(AGPType type) { mType = type; }
    AGPType getAGPType() const { return mType; }
    void setAGPDelay(std::int32_t delay) { mDelay = delay; }
    std::int32_t getAGPDelay() const { return mDelay; }
    static AGPType parseAGPType(const std::string& text);
    static std::int32_t parseAGPDelay(const std::string& text);
    int getDisplayAlertType() const;
    // The Image child, or null.
    AGPCommonBase* getAGPImage();
    // The Image child's picture for the widget, or null.
    DisplayAPI::Image* takeImage();
    AGPIppCommand* getDismissCommand() const { return mDismissCommand; }
    const std::vector<AGPIppCommand*>& getCommands() const { return mCommands; }

    void createAndInitDisplayElements();
    void deleteDisplayElements();
    void addCommands();
    void processAlertCommand(std::multimap<std::string, std::string>& keyValues,
                             DisplayAPI::Command* command);
    void screenAlertCommand(DisplayAPI::Command* command, bool bringToFront);
    void invokeCommand(DisplayAPI::Command* command);

private:
    bool addAGPTitle(AGPCommonBase& child) { return addCountedChild(mTitleCount, child); }
    bool addAGPUrl(AGPCommonBase& child) { return addCountedChild(mUrlCount, child); }
    bool addAGPText(AGPCommonBase& child) { return addCountedChild(mTextCount, child); }
    bool addAGPImage(AGPCommonBase& child) { return addCountedChild(mImageCount, child); }
    AGPIppCommand* findCommand(DisplayAPI::Command* command);
    void createDismissCommand();
    void dismiss(AGPMessage& message);

    AGPChildCount mTitleCount;
    AGPChildCount mUrlCount;
    AGPChildCount mTextCount;
    AGPChildCount mImageCount;
    AGPType mType;
    std::int32_t mDelay;
    AGPId mLastMessageAgpId;
    DisplayAPI::Alert* mAlert;
    AGPIppCommand* mDismissCommand;
    std::vector<AGPIppCommand*> mCommands;
};
