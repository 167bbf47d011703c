// The XML application browser as a phone plug-in: life cycle, start-up, pushes and error document.
#include "AGPPhonelet.h"

#define AGP_LOG_MODULE "AGPPhonelet"
#define AGP_LOG_SOURCE "./src/AGPPhonelet.cpp"

#include <cstdio>

#include "AGPAudioHandler.h"
#include "AGPCallHandler.h"
#include "AGPDataObserver.h"
#include "AGPGUIHandler.h"
#include "AGPImageCache.h"
#include "AGPKeysHandler.h"
#include "AGPLog.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectPool.h"
#include "AGPPhonebookHandler.h"
#include "AGPPhoneletManager.h"
#include "AGPRemoteTraceHandler.h"
#include "AGPServerConnection.h"
#include "AGPUtils.h"
#include "AGPXMLParser.h"
#include "clock/ClockServiceIfc.h"
#include "config/LocalMgmtIfc.h"
#include "csta/CSTAEvent.h"
#include "csta/CSTAServiceIfc.h"
#include "directory/DirectoryServiceIfc.h"
#include "display/Display.h"
#include "display/List.h"
#include "http/HttpServiceIfc.h"
#include "media/MediaControlServiceIfc.h"
#include "phonelet/Context.h"
#include "phonelet/PhoneletManagerIfc.h"
#include "physical/PhysicalInterfaceServiceIfc.h"
#include "text/TranslationInfo.h"
#include "text/Translator.h"
#include "threads/CriticalSection.h"
#include "uri/GPALAdmin.h"
#include "util/ClientUtils.h"

namespace {

// The platform services the phonelet needs, found by name at start-up.
struct PlatformServices {
    DirectoryServiceIfc* directory = nullptr;
    PhoneletManagerIfc* phoneletManager = nullptr;
    CSTAServiceIfc* csta = nullptr;
    PhysicalInterfaceServiceIfc* physical = nullptr;
    ClockServiceIfc* clock = nullptr;
    MediaControlServiceIfc* media = nullptr;
    HttpServiceIfc* http = nullptr;
};

template <typename Interface> Interface* findService(Context* context, const char* name) {
    return dynamic_cast<Interface*>(context->getService(name));
}

// Looks a service up and logs (and for some, prints) the failure text when it is missing.
template <typename Interface>
bool lookUp(Context* context, const char* name, const char* missingText, bool alsoPrint, Interface*& out) {
    out = findService<Interface>(context, name);
    if (out == nullptr) {
        AGP_LOG(2, "%s", missingText);
        if (alsoPrint) {
            std::printf("%s\n", missingText);
        }
        return false;
    }
    return true;
}

bool lookUpAll(Context* context, PlatformServices& services) {
    return lookUp(context, "DirectoryServiceIfc", "Can't find Directory Service", false,
                  services.directory) &&
           lookUp(context, "PhoneletManagerIfc", "Can't find PhoneletManager Service", false,
                  services.phoneletManager) &&
           lookUp(context, "CSTAServiceIfc", "Can't find CSTA Service", false, services.csta) &&
           lookUp(context, "PhysicalInterfaceServiceIfc", "Can't find Physical Ifc Service", false,
                  services.physical) &&
           lookUp(context, "ClockServiceIfc", "Can't find Clock Ifc Service", false, services.clock) &&
           lookUp(context, "MediaControlServiceIfc", "Can't find Media Control Service", true,
                  services.media) &&
           lookUp(context, "HttpServiceIfc", "Can't find Http Ifc Service", true, services.http);
}

template <typename Service> bool exists(Service* service, const char* failureText) {
    if (service == nullptr) {
        AGP_LOG(2, "%s", failureText);
        return false;
    }
    return true;
}

bool createAllServices() {
    return exists(AGPPhoneletManager::getAGPDataObserver(), "AGPDataObserver allocation failure") &&
           exists(AGPPhoneletManager::getAGPXMLParser(), "AGPXMLParser allocation failure") &&
           exists(AGPPhoneletManager::getAGPServerConnection(), "AGPServerConnection allocation failure") &&
           exists(AGPPhoneletManager::getAGPGUIHandler(), "AGPGUIHandler allocation failure") &&
           exists(AGPPhoneletManager::getAGPMessageQueueHandler(),
                  "AGPMessageQueueHandler allocation failure") &&
           exists(AGPPhoneletManager::getAGPPhonebookHandler(), "AGPPhonebookHandler allocation failure") &&
           exists(AGPPhoneletManager::getAGPCallHandler(), "AGPCallHandler allocation failure") &&
           exists(AGPPhoneletManager::getAGPImageCache(), "AGPImageCache allocation failure") &&
           exists(AGPPhoneletManager::getAGPKeysHandler(), "AGPKeyHandler allocation failure");
}

bool startAllServices(DisplayAPI::Display* display, const PlatformServices& services) {
    return AGPPhoneletManager::getAGPKeysHandler()->startAGPKeysHandler(services.physical,
                                                                        services.phoneletManager) &&
           AGPPhoneletManager::getAGPXMLParser()->startAGPXMLParser() &&
           AGPPhoneletManager::getAGPServerConnection()->startAGPServerConnection(services.http) &&
           AGPPhoneletManager::getAGPPhonebookHandler()->startAGPPhonebookHandler(services.directory) &&
           AGPPhoneletManager::getAGPCallHandler()->startAGPCallHandler(services.csta) &&
           AGPPhoneletManager::getAGPAudioHandler()->startAGPAudioHandler(services.media) &&
           AGPPhoneletManager::getAGPImageCache()->startAGPImageCache() &&
           AGPPhoneletManager::getAGPGUIHandler()->startAGPGUIHandler(display, services.phoneletManager) &&
           AGPPhoneletManager::getAGPRemoteTraceHandler()->startRemoteTraceHandler(services.clock);
}

} // namespace

extern "C" Phonelet* createPhonelet() {
    return new AGPPhonelet();
}

AGPPhonelet::AGPPhonelet()
    : mContext(nullptr), mPushLock(new Semaphore(1, 1, false)), mTranslator(new Translator("AGPPhonelet")),
      mDisplay(nullptr), mStartupList(nullptr), mStarted(false), mErrorDisplayed(false),
      mShuttingDown(false) {
    AGPObjectPool::initPool();
}

AGPPhonelet::~AGPPhonelet() {
    AGP_LOG(5, "AGPPhonelet: Destructor: Releasing Resources");
    shutdown();
    mDelayedPushes.clear();
}

void AGPPhonelet::init(Context& context) {
    AGP_LOG(5, "Initialising AGP Phonelet");
    mContext = &context;
    mDisplay = context.getDisplay();
    AGPPhoneletManager::setAGPPhonelet(this);
}

void AGPPhonelet::startPhonelet() {
    AGP_LOG(5, "Starting AGP Phonelet");
    if (mTranslator == nullptr) {
        AGP_LOG(2, "Can't find TransaltorIfC");
        return;
    }
    enableDialling();
    LocalMgmtIfc* configurationService = nullptr;
    if (mContext == nullptr ||
        !lookUp(mContext, "LocalMgmtIfc", "Can't find VEXA Service", false, configurationService)) {
        return;
    }
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    if (!configuration->startAGPDataObserver(configurationService)) {
        AGP_LOG(2, "Failed to start AGPDataObserver");
        return;
    }
    if (!configuration->updateXMLApplicationConfiguration(mContext->getApplicationName())) {
        AGP_LOG(2, "Failed to update XML application configuration");
        return;
    }
    const std::string language = configuration->getLanguage();
    mTranslator->setLanguage(language);
    if (mContext->getLocale() != language) {
        notifyLocaleChange(language);
    }
    mStartupList = new DisplayAPI::List(1);
    mStartupList->append(mTranslator->translate("xml.app.starting"));
    if (mDisplay != nullptr) {
        mDisplay->setCurrent(mStartupList);
    }
    if (!startServices()) {
        displayStartupFailed();
        return;
    }
    sendStartupRequestOrReplayPushes();
}

bool AGPPhonelet::startServices() {
    PlatformServices services;
    if (!lookUpAll(mContext, services) || !createAllServices() || !startAllServices(mDisplay, services)) {
        return false;
    }
    AGPGUIHandler* gui = AGPPhoneletManager::getAGPGUIHandler();
    gui->setDateFormat(mContext->getDateFormat());
    gui->setTimeFormat(mContext->getTimeFormat());
    unsigned short tabs = 0;
    ClientUtils::stringToUnsignedShort(AGPPhoneletManager::getAGPDataObserver()->getNumTabs(), tabs);
    return AGPPhoneletManager::getAGPMessageQueueHandler()->startAGPMessageQueueHandler(tabs + 1);
}

void AGPPhonelet::sendStartupRequestOrReplayPushes() {
    mPushLock->take(-1);
    if (mDelayedPushes.empty()) {
        std::string startUrl = getApplicationURL(STARTUP_URL, "", "", "");
        std::string noPush;
        initiateStartupUriRequest(startUrl, noPush, AGPMessage::UrlRequest_XML, 0);
        mStarted = true;
        mPushLock->give();
        AGP_LOG(5, "AGPPhonelet started\n");
        std::printf("AGPPhonelet started\n");
        return;
    }
    bool first = true;
    while (!mDelayedPushes.empty()) {
        const DELAYED_PUSH waiting = mDelayedPushes.front();
        mDelayedPushes.erase(mDelayedPushes.begin());
        mPushLock->give();
        pushInternal(waiting.pushData, waiting.appName, waiting.pushType, first);
        first = false;
        mPushLock->take(-1);
    }
    mStarted = true;
    mPushLock->give();
}

void AGPPhonelet::shutdown() {
    if (mShuttingDown.exchange(true)) {
        return;
    }
    mStarted = false;
    AGP_LOG(5, "Shutting down AGP Phonelet");
    if (mDisplay != nullptr) {
        mDisplay->setCurrent(nullptr);
        mDisplay = nullptr;
    }
    AGPPhoneletManager::shutdownPhonelet();
    deregisterFromPhoneletManager();
    delete mTranslator;
    mTranslator = nullptr;
    delete mStartupList;
    mStartupList = nullptr;
    delete mPushLock;
    mPushLock = nullptr;
    AGP_LOG(5, "AGPPhonelet::shutdown() complete\n");
}

std::string AGPPhonelet::getInterfaces() {
    const std::string name = mContext != nullptr ? mContext->getApplicationName() : GetPhoneletName();
    return name + "Ifc" + " PhoneletIfc ClockServiceObserverIfc" +
           " CSTAEventIfc MgmtAgentIfc PhysicalEventObserver";
}

void AGPPhonelet::stopPhonelet() {
    AGP_LOG(5, "Stopping AGP Phonelet");
    shutdown();
}

void AGPPhonelet::show() {
    if (mStarted) {
        AGP_LOG(5, "Showing AGP Phonelet");
        AGPPhoneletManager::getAGPGUIHandler()->show();
    } else {
        AGP_LOG(5, "Showing AGP Phonelet - phonelet startup incomplete");
        if (mDisplay != nullptr) {
            mDisplay->show();
        }
    }
}

void AGPPhonelet::hide() {
    if (mStarted) {
        AGP_LOG(5, "Hiding AGP Phonelet");
        AGPPhoneletManager::getAGPGUIHandler()->hide();
    } else {
        AGP_LOG(5, "Hiding AGP Phonelet - phonelet startup incomplete");
        if (mDisplay != nullptr) {
            mDisplay->hide();
        }
    }
}

void AGPPhonelet::tab() {
    if (!mStarted) {
        AGP_LOG(5, "Tabbing AGP Phonelet ignored - phonelet startup incomplete or error message displayed");
        return;
    }
    AGP_LOG(5, "Tabbing AGP Phonelet");
    AGPPhoneletManager::getAGPGUIHandler()->tab(1);
}

void AGPPhonelet::tabStatusChange(bool active) {
    if (mStarted) {
        AGPPhoneletManager::getAGPGUIHandler()->tabStatusChange(active);
    }
}

void AGPPhonelet::pause() {
    AGP_LOG(5, "Pausing AGP Phonelet");
}

void AGPPhonelet::resume() {
    AGP_LOG(5, "Resuming AGP Phonelet");
}

void AGPPhonelet::localeChanged(std::string language) {
    if (!mStarted) {
        return;
    }
    AGP_LOG(5, "Language changed to %s", language.c_str());
    mTranslator->setLanguage(language);
    AGPPhoneletManager::getAGPDataObserver()->setLanguage(language);
}

void AGPPhonelet::dateFormatChanged(std::string format) {
    if (mStarted) {
        if (AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler()) {
            gui->setDateFormat(format);
        }
    }
}

void AGPPhonelet::timeFormatChanged(std::string format) {
    if (mStarted) {
        if (AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler()) {
            gui->setTimeFormat(format);
        }
    }
}

void AGPPhonelet::deliverEvent(CSTAEvent* event) {
    if (mStarted && event != nullptr) {
        event->dispatch(AGPPhoneletManager::getAGPCallHandler());
    }
}

void AGPPhonelet::manageableDataChanged(ManageableData& data) {
    if (mStarted) {
        AGPPhoneletManager::getAGPDataObserver()->processChangedManageableData(data);
    }
}

bool AGPPhonelet::setData(ManageableData&) {
    return true;
}

bool AGPPhonelet::getData(ManageableData&) {
    return true;
}

bool AGPPhonelet::resetUserData() {
    return true;
}

void AGPPhonelet::buttonPressedEvent(PhysDefs::keyFunctionType, int key, PhysDefs::actionType action,
                                     std::string) {
    AGPPhoneletManager::getAGPKeysHandler()->processKeyPressed(key, action);
}

void AGPPhonelet::hookswitchEvent(PhysDefs::actionType) {}

void AGPPhonelet::jackEvent(PhysDefs::plugIdentifier, PhysDefs::plugStatus) {}

physicalEventObserver* AGPPhonelet::getSubscribingService() {
    return this;
}

std::string AGPPhonelet::getPhoneletName() {
    return mContext != nullptr ? mContext->getApplicationName() : "";
}

void AGPPhonelet::enableDialling() {
    if (mDisplay != nullptr) {
        AGP_LOG(5, "Enabling dialling");
        mDisplay->setKeypadEventSending(true);
    }
}

void AGPPhonelet::disableDialling() {
    if (mDisplay != nullptr) {
        AGP_LOG(5, "Disabling dialling");
        mDisplay->setKeypadEventSending(false);
    }
}

void AGPPhonelet::AGPRequestFocus() {
    RequestFocus();
}

void AGPPhonelet::AGPGrabFocus() {
    GrabFocus();
}

void AGPPhonelet::AGPReleaseFocus() {
    ReleaseFocus();
}

void AGPPhonelet::displayStartupFailed() {
    if (mStartupList != nullptr) {
        mStartupList->append(mTranslator->translate("xml.app.failed"));
    }
}

// A number such as "+49 89 1234" or a context value with blanks must reach the server as it
// stands: "+" would arrive as a blank and a blank would make the URL invalid.
std::string AGPPhonelet::encodedQueryValue(const std::string& value) {
    std::string encoded;
    GPALAdmin::encodeUri(value, encoded, true, true);
    return encoded;
}

std::string AGPPhonelet::getApplicationURL(ApplicationUrlType type, std::string programName, std::string port,
                                           std::string protocol) {
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    std::string program = configuration->getProgramName();
    std::string serverPort = configuration->getServerPort();
    std::string transport = configuration->getTransport();
    if (type == REMOTE_TRACE_URL && configuration->isRemoteDebugEnabled()) {
        program = configuration->getDebugProgName();
    }
    if (type == PUSH_URL || type == STARTUP_PUSH_URL) {
        program = programName.empty() ? program : programName;
        serverPort = port.empty() ? serverPort : port;
        transport = protocol.empty() ? transport : protocol;
    }
    const char* separator = program.find('?') != std::string::npos ? "&" : "?";
    if (program.empty()) {
        return "";
    }
    if (program[0] != '/') {
        program = "/" + program;
    }
    std::string url = transport + "://" + configuration->getServerAddress() + ":" + serverPort + program;
    if (type != PUSH_URL) {
        url += std::string(separator) + "ipaddress=" + configuration->getLocalIPAddress() +
               "&phonenumber=" + encodedQueryValue(configuration->getSubscriberNumber()) +
               "&devicetype=" + configuration->getDeviceType();
    }
    return url;
}

bool AGPPhonelet::initiateStartupUriRequest(std::string& uriBase, std::string& uriPush,
                                            AGPMessage::MessageType type, AGPQueueNumber queue) {
    AGP_LOG(5, "AGPPhonelet::initiateStartupUriRequest:\nuribase: %s\nuripush: %s", uriBase.c_str(),
            uriPush.c_str());
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    AGPMessageQueueHandler* queues = AGPPhoneletManager::getAGPMessageQueueHandler();
    const std::string numTabsText = configuration->getNumTabs();
    if (numTabsText == "0") {
        AGPMessage message;
        message.type = type;
        message.content = type == AGPMessage::UrlRequest_XML ? uriBase : uriPush;
        return queues->addToMessageQueue(message, 0);
    }
    int numTabs = 0;
    if (!AGPUtils::stringToInt(numTabsText, numTabs) || numTabs >= 4) {
        numTabs = 0;
    }
    if (numTabs < 1) {
        // Otherwise the phone waits on its start-up screen with no word of why.
        AGP_LOG(2,
                "No start-up request: num-tabs is \"%s\"; \"0\" is one screen without tabs, 1 to 3 are tabs",
                numTabsText.c_str());
    }
    const bool allTabsStart = configuration->getAppAllTabsStart() == "true";
    const std::string tabAppNames[] = {configuration->getTab1AppName(), configuration->getTab2AppName(),
                                       configuration->getTab3AppName()};
    AGPGUIHandler* gui = AGPPhoneletManager::getAGPGUIHandler();
    for (int k = 1; k <= 3 && k <= numTabs; ++k) {
        const bool takesPart = allTabsStart || queue == k || (k == 1 && queue == 0);
        bool created = false;
        if (takesPart) {
            created = gui->initTabScreen(k - 1, mTranslator);
        }
        std::string url;
        if (queue == k) {
            url = uriPush;
        } else if (created) {
            url = uriBase + "&tab=internal:" + tabAppNames[k - 1];
        } else {
            continue;
        }
        AGPMessage message(type, url);
        message.bringToFront = queue == 0 || queue == k;
        queues->addToMessageQueue(message, k);
    }
    return true;
}

int AGPPhonelet::push(const std::string& pushData, const std::string& appName, int pushType) {
    if (mErrorDisplayed || mShuttingDown) {
        return 0;
    }
    mPushLock->take(-1);
    if (mStarted && mDelayedPushes.empty()) {
        mPushLock->give();
        return pushInternal(pushData, appName, pushType, false);
    }
    if (mDelayedPushes.size() >= kMaxDelayedPushes) {
        mPushLock->give();
        AGP_LOG(2, "push: %zu pushes already wait for the start-up; refused", kMaxDelayedPushes);
        return 0;
    }
    mDelayedPushes.push_back({pushData, appName, pushType});
    mPushLock->give();
    return 1;
}

AGPQueueNumber AGPPhonelet::pushTargetQueue(const std::string& appName) {
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    if (appName == configuration->getTab1AppName()) {
        return 1;
    }
    if (appName == configuration->getTab2AppName()) {
        return 2;
    }
    if (appName == configuration->getTab3AppName()) {
        return 3;
    }
    if (appName == configuration->getAppName()) {
        return 0;
    }
    return -1;
}

int AGPPhonelet::pushInternal(const std::string& pushData, const std::string& appName, int pushType,
                              bool startupPush) {
    AGP_LOG(5, "Pushing AGP Phonelet (%s;%s;%i)", pushData.c_str(), appName.c_str(), pushType);
    AGPDataObserver* configuration = AGPPhoneletManager::getAGPDataObserver();
    const std::string serverAddr =
        AGPUtils::adjustIPv6Address(AGPUtils::getValueFromURL(pushData, "ServerAddr"));
    if (serverAddr != configuration->getServerAddress()) {
        AGP_LOG(5, "pushInternal: server address doesn't match");
        return 1;
    }
    std::string protocol = AGPUtils::getValueFromURL(pushData, "ServerProtocol");
    std::string port = AGPUtils::getValueFromURL(pushData, "ServerPort");
    std::string program = AGPUtils::getValueFromURL(pushData, "ProgramName");
    const std::string contextKey = AGPUtils::getValueFromURL(pushData, "ServerContextKey");
    const std::string contextValue = AGPUtils::getValueFromURL(pushData, "ServerContextValue");
    protocol = protocol.empty() ? configuration->getTransport() : protocol;
    port = port.empty() ? configuration->getServerPort() : port;
    program = program.empty() ? configuration->getProgramName() : program;

    const AGPQueueNumber queue = pushTargetQueue(appName);
    if (queue < 0) {
        return 1;
    }
    std::string uriBase = getApplicationURL(STARTUP_URL, "", "", "");
    std::string uriPush =
        getApplicationURL(startupPush ? STARTUP_PUSH_URL : PUSH_URL, program, port, protocol);
    if (!contextKey.empty()) {
        uriPush += std::string(uriPush.find('?') != std::string::npos ? "&" : "?") +
                   encodedQueryValue(contextKey) + "=" + encodedQueryValue(contextValue);
    }
    AGPMessage::MessageType type = AGPMessage::Unknown;
    switch (pushType) {
    case 1:
        type = AGPMessage::UrlRequest_XML_push_queue;
        break;
    case 2:
        type = AGPMessage::UrlRequest_XML_push_indicate;
        break;
    case 3:
        type = AGPMessage::UrlRequest_XML_push_force;
        break;
    case 4:
        type = AGPMessage::UrlRequest_XML_push_active;
        break;
    default:
        return 1;
    }
    initiateStartupUriRequest(uriBase, uriPush, type, queue);
    return 1;
}

std::string AGPPhonelet::buildErrorDocument(const char* errorKey, const std::string& escapedDetails) {
    const std::string title = mTranslator->translate("xml.app");
    const std::string error = mTranslator->translate(errorKey);
    const std::string hint = mTranslator->translate("xml.app.exit.hint");
    const std::string detailsLabel = mTranslator->translate("xml.app.error.details");
    const std::string exitLabel = mTranslator->translate("command.exit");
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"
           "<IppDisplay InitialScreen=\"1\">"
           "<IppScreen ID=\"1\" HiddenCount=\"0\" CommandCount=\"1\">"
           "<IppTextBox MaxSize=\"" +
           std::to_string(escapedDetails.size() + 1000) +
           "\" Constraint=\"ANY\" Uneditable=\"YES\" Default=\"TEXT\" ExitAppearance=\"BOTH\">"
           "<Title>" +
           title + "</Title><Text>" + error + ".\n\n" + hint + ".\n\n\n\n\n\n\n" + detailsLabel + ":\n" +
           escapedDetails +
           "</Text>"
           "</IppTextBox>"
           "<IppCommand Type=\"EXIT\"><Label>" +
           exitLabel +
           "</Label><ScreenID>1</ScreenID></IppCommand>"
           "</IppScreen></IppDisplay>";
}

void AGPPhonelet::displayErrorRequest(const char* errorKey, std::string& details) {
    // Exactly one error document, even when two queue threads fail at the same moment.
    if (mErrorDisplayed.exchange(true)) {
        return;
    }
    AGP_LOG(5, "displayErrorRequest: %s, %s", errorKey, details.c_str());
    std::printf("displayErrorRequest: %s, %s\n", errorKey, details.c_str());
    std::string escaped;
    AGPUtils::substituteXMLReservedChars(details, escaped);
    AGPMessage message(AGPMessage::UrlRequest_Display_Error, buildErrorDocument(errorKey, escaped));
    AGPMessageQueueHandler* queues = AGPPhoneletManager::getAGPMessageQueueHandler();
    if (AGPPhoneletManager::getAGPDataObserver()->getNumTabs() == "0") {
        queues->addToMessageQueue(message, 0);
        return;
    }
    for (AGPQueueNumber queue = 1; queue <= 3; ++queue) {
        AGPMessage copy = message;
        queues->addToMessageQueue(copy, queue);
    }
}
