// The XML application browser as a phone plug-in: life cycle, start-up, pushes and error document.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "AGPMessage.h"
#include "AGPTypes.h"
#include "config/MgmtAgentIfc.h"
#include "csta/CSTAEventIfc.h"
#include "phonelet/Phonelet.h"
#include "physical/physicalEventObserver.h"

class Semaphore;
class Translator;

namespace DisplayAPI {
class Display;
class List;
} // namespace DisplayAPI

class AGPPhonelet : public Phonelet, public CSTAEventIfc, public MgmtAgentIfc, public physicalEventObserver {
public:
    enum ApplicationUrlType { STARTUP_URL = 0, REMOTE_TRACE_URL = 1, PUSH_URL = 2, STARTUP_PUSH_URL = 3 };

    struct DELAYED_PUSH {
        std::string pushData;
        std::string appName;
        int pushType;
    };

    AGPPhonelet();
    ~AGPPhonelet() override;

    void init(Context& context) override;
    void shutdown() override;
    std::string getInterfaces() override;
    void startPhonelet() override;
    void stopPhonelet() override;
    void hide() override;
    void show() override;
    void tab() override;
    void pause() override;
    void resume() override;
    void localeChanged(std::string language) override;
    void dateFormatChanged(std::string format) override;
    void timeFormatChanged(std::string format) override;
    void tabStatusChange(bool active) override;
    int push(const std::string& pushData, const std::string& appName, int pushType) override;

    void deliverEvent(CSTAEvent* event) override;
    void manageableDataChanged(ManageableData& data) override;
    bool setData(ManageableData& data) override;
    bool getData(ManageableData& data) override;
    bool resetUserData() override;
    void buttonPressedEvent(PhysDefs::keyFunctionType type, int key, PhysDefs::actionType action,
                            std::string text) override;
    void hookswitchEvent(PhysDefs::actionType action) override;
    void jackEvent(PhysDefs::plugIdentifier plug, PhysDefs::plugStatus status) override;
    physicalEventObserver* getSubscribingService() override;

    std::string getPhoneletName();
    void enableDialling();
    void disableDialling();
    void AGPRequestFocus();
    void AGPGrabFocus();
    void AGPReleaseFocus();

    int pushInternal(const std::string& pushData, const std::string& appName, int pushType, bool startupPush);
    std::string getApplicationURL(ApplicationUrlType type, std::string programName, std::string port,
                                  std::string protocol);
    bool initiateStartupUriRequest(std::string& uriBase, std::string& uriPush, AGPMessage::MessageType type,
                                   AGPQueueNumber queue);
    void displayErrorRequest(const char* errorKey, std::string& details);
    void displayStartupFailed();

    bool isStarted() const { return mStarted; }
    bool isErrorDisplayed() const { return mErrorDisplayed; }
    bool isShuttingDown() const { return mShuttingDown; }
    Translator* getTranslator() const { return mTranslator; }
    Context* getContext() const { return mContext; }

private:
    // `value` percent-encoded for a query key or value.
    static std::string encodedQueryValue(const std::string& value);
    bool startServices();
    bool findPlatformServices();
    bool createServices();
    void sendStartupRequestOrReplayPushes();
    AGPQueueNumber pushTargetQueue(const std::string& appName);
    std::string buildErrorDocument(const char* errorKey, const std::string& escapedDetails);

    Context* mContext;
    Semaphore* mPushLock;
    // Pushes kept until start-up completes; more are refused (start-up may never complete).
    static constexpr size_t kMaxDelayedPushes = 20;
    std::vector<DELAYED_PUSH> mDelayedPushes;
    Translator* mTranslator;
    DisplayAPI::Display* mDisplay;
    DisplayAPI::List* mStartupList;
    std::atomic<bool> mStarted;
    std::atomic<bool> mErrorDisplayed;
    std::atomic<bool> mShuttingDown;
};

// The plug-in entry the host looks up by name.
extern "C" __attribute__((visibility("default"))) Phonelet* createPhonelet();
