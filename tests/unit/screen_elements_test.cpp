// Tests of the display, screen, command, action and hidden elements and of the displayable base.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "AGPDataObserver.h"
#include "AGPDisplayable.h"
#include "AGPGUIHandler.h"
#include "AGPIppAction.h"
#include "AGPIppCommand.h"
#include "AGPIppDisplay.h"
#include "AGPIppHidden.h"
#include "AGPIppScreen.h"
#include "AGPKey.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"
#include "config/ManageableData.h"
#include "display/CommandListener.h"
#include "display/MenuCommand.h"
#include "display/Timer.h"
#include "logging/LogCapture.h"

namespace {

using KeyValues = std::multimap<std::string, std::string>;

// Stands in for a full-screen element and does with the base what the real ones do.
class TestForm : public AGPDisplayable {
public:
    TestForm() { registerElement(); }
    ~TestForm() override { unregisterElement(); }
    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppForm; }
    DisplayAPI::Displayable* getDisplayAPIDisplayable() override { return nullptr; }
    bool addChild(AGPCommonBase& child) override {
        return child.getAGPObjectType() == AGPObjectTypeInfo::ti_Url && addCountedChild(mUrlCount, child);
    }
    void setCommandElement(AGPIppCommand& command) override {
        mCommands.push_back(&command);
        observeEventCommand(&command);
        setTimerCommand(&command);
    }
    void processNotifyEvent(AGPIppCommand::AGPEvent event) override {
        AGPIppCommand* command = findObservedEventCommand(event);
        if (command != nullptr) {
            KeyValues pairs;
            command->gatherKeyValues(pairs);
            reReadFromUrl(pairs);
        }
    }
    std::vector<AGPIppCommand*> mCommands;
    AGPChildCount mUrlCount{0, 1};
};

class NoListener : public DisplayAPI::CommandListener {
public:
    void commandAction(DisplayAPI::Command*, DisplayAPI::Displayable*) override {}
};

struct Request {
    std::string type;
    std::string content;
};

class ScreenElements : public ::testing::Test {
protected:
    void SetUp() override {
        AGPObjectPool::initPool();
        ManageableData phone;
        phone.setValue("currentPhoneNumber", "+49 89 4711");
        phone.setValue("ipaddress", "192.0.2.7");
        phone.setValue("ip-protocol-mode", "IPv4");
        AGPPhoneletManager::getAGPDataObserver()->processChangedManageableData(phone);
        AGPPhoneletManager::getAGPServerConnection();
        AGPPhoneletManager::getAGPXMLParser();
        AGPPhoneletManager::getAGPGUIHandler();
        // The queues accept requests but never process them: the test reads them from the log.
        AGPMessageQueueHandler* queues = AGPPhoneletManager::getAGPMessageQueueHandler();
        ASSERT_TRUE(queues->startAGPMessageQueueHandler(2));
        queues->stopReadingQueues();
    }
    void TearDown() override {
        if (mRoot != nullptr) {
            AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(mRoot->getAGPObjectID());
        }
        AGPPhoneletManager::shutdownPhonelet();
    }

    // Parses a document, adds a TestForm with `url` to its first screen and initialises the tree
    // on `queue` in the installation order: every element, children first.
    AGPIppDisplay* install(std::string xml, const char* url = nullptr, AGPQueueNumber queue = 1) {
        AGPCommonBase* root = nullptr;
        EXPECT_TRUE(AGPPhoneletManager::getAGPXMLParser()->parseXMLData(xml, root));
        mRoot = root;
        if (root == nullptr || root->getAGPObjectType() != AGPObjectTypeInfo::ti_IppDisplay) {
            return nullptr;
        }
        if (url != nullptr) {
            mForm = new TestForm();
            link(screen(0), mForm);
            std::string name = "Url";
            std::string text = url;
            AGPCommonBase* urlElement = AGPCommonBase::getInstanceFor(name);
            urlElement->addContent(text);
            link(mForm, urlElement);
        }
        std::vector<AGPCommonBase*> tree;
        AGPCommonBase::createTreeExplorationVector(root, tree);
        for (AGPCommonBase* element : tree) {
            element->setQueueID(queue);
            element->initializeElement();
        }
        return static_cast<AGPIppDisplay*>(root);
    }
    AGPIppScreen* screen(size_t index) { return static_cast<AGPIppScreen*>(mRoot->getSequence().at(index)); }
    static void link(AGPCommonBase* parent, AGPCommonBase* child) {
        ASSERT_TRUE(parent->addChild(*child));
        child->setParent(parent);
    }
    template <typename Element>
    std::vector<Element*> children(AGPCommonBase* parent, AGPObjectTypeInfo::AGPObjectType type) {
        std::vector<AGPCommonBase*> found;
        parent->getChildrenByType(type, found);
        std::vector<Element*> out;
        for (AGPCommonBase* element : found) {
            out.push_back(static_cast<Element*>(element));
        }
        return out;
    }

    // The requests queued since the last call, from the queue handler's log lines.
    std::vector<Request> requests() {
        std::vector<Request> out;
        for (const std::string& text : mLog.texts("AGPMessageQueueHandler")) {
            const size_t type = text.find("type: ");
            const size_t content = text.find("Message content: ");
            if (text.rfind("Add message", 0) == 0 && type != std::string::npos &&
                content != std::string::npos) {
                out.push_back(
                    {text.substr(type + 6, text.find(',', type) - type - 6), text.substr(content + 17)});
            }
        }
        mLog.clear();
        return out;
    }

    LogCapture mLog{6};
    AGPCommonBase* mRoot = nullptr;
    TestForm* mForm = nullptr;
};

} // namespace

TEST_F(ScreenElements, DocumentTreeAttributesAndBounds) {
    AGPIppDisplay* display = install(R"(<IppDisplay InitialScreen="2" UpdateScreen="x" Colour="red">
        <IppScreen ID="12abc" CommandCount="-1" HiddenCount="2" History="no" Sound="  beep  loud">
          <IppAction Type="TURNLEDON"/><IppAction Type="ENDCALL"/><IppAction Type="PLAYTONE"/>
          <IppAction Type="MAKECALL"/>
          <IppHidden Key="a" Type="VALUE"><Value>1</Value><Value>2</Value></IppHidden>
          <IppCommand Type="SEND" Priority=" 7x" Auto="-4"><Label>Go</Label><Label>Again</Label></IppCommand>
          <Title>not a screen child</Title>
        </IppScreen>
        <IppScreen ID="1" History="NO" Sound="   "/><IppScreen/><IppScreen/><IppScreen/><IppScreen ID="6"/>
      </IppDisplay>)");
    ASSERT_NE(display, nullptr);
    EXPECT_EQ(display->getAGPInitialScreen(), 2);
    EXPECT_EQ(display->getAGPUpdateScreen(), -1) << "a bad number means not given";
    ASSERT_EQ(display->getSequence().size(), 5u) << "a sixth screen is refused";
    EXPECT_TRUE(display->isValid());

    AGPIppScreen* first = screen(0);
    EXPECT_EQ(first->getAGPID(), 12u);
    EXPECT_EQ(first->getAGPCommandCount(), 0u);
    EXPECT_EQ(first->getAGPHiddenCount(), 2u);
    EXPECT_EQ(first->getAGPHistory(), AGPIppScreen::HISTORY_YES) << "only upper-case NO keeps it out";
    EXPECT_EQ(first->getAGPSound(), "beep");
    EXPECT_EQ(first->getCacheExpirationTime(), AGPServerConnection::CACHE_TIMEVALID_FOREVER);
    EXPECT_EQ(children<AGPIppAction>(first, AGPObjectTypeInfo::ti_IppAction).size(), 3u);
    EXPECT_EQ(first->getChildByType(AGPObjectTypeInfo::ti_Title), nullptr);
    EXPECT_EQ(first->getDisplayableElement(), nullptr);
    EXPECT_FALSE(first->hasBack()) << "no BACK command and no full-screen element";

    auto hidden = children<AGPIppHidden>(first, AGPObjectTypeInfo::ti_IppHidden);
    ASSERT_EQ(hidden.size(), 1u);
    EXPECT_EQ(hidden[0]->getSequence().size(), 1u) << "one Value at most";
    EXPECT_TRUE(hidden[0]->isValid());

    auto commands = children<AGPIppCommand>(first, AGPObjectTypeInfo::ti_IppCommand);
    ASSERT_EQ(commands.size(), 1u);
    EXPECT_EQ(commands[0]->getAGPType(), AGPIppCommand::TYPE_NOT_GIVEN);
    EXPECT_FALSE(commands[0]->isValid());
    EXPECT_EQ(commands[0]->getAGPPriority(), 7u);
    EXPECT_EQ(commands[0]->getAGPAuto(), 0u);
    EXPECT_EQ(commands[0]->getMessageType(), AGPMessage::Command_Error);
    EXPECT_EQ(commands[0]->getMenuCommand()->getBasicText(), "Go") << "the second Label was refused";

    EXPECT_EQ(screen(1)->getAGPHistory(), AGPIppScreen::HISTORY_NO);
    EXPECT_EQ(screen(1)->getAGPSound(), AGPIppScreen::AGPSound_PARSE_FAILED);
    EXPECT_TRUE(mLog.contains("AGPXMLParser", 6,
                              "Couldn't set attribute [Sound]=[   ] to element [IppScreen] (level 1)"));
    EXPECT_TRUE(mLog.contains("AGPXMLParser", 6,
                              "Couldn't set attribute [UpdateScreen]=[x] to element [IppDisplay] (level 0)"));
}

TEST_F(ScreenElements, CommandsLabelsPairsEqualityAndOrder) {
    install(R"(<IppDisplay><IppScreen>
        <IppCommand Type="EXIT" Key="k"/>
        <IppCommand Type="SCREEN" Value="v" Priority="1"/>
        <IppCommand Type="BACK" Priority="5"><Label>Zurueck</Label><ScreenID>4</ScreenID></IppCommand>
        <IppCommand Type="SELECT"/>
        <IppCommand Type="BACK" Priority="5" Select="YES" Default="YES"><Label>Zurueck</Label></IppCommand>
        <IppCommand Type="BACK" Priority="5"><Label>Back</Label></IppCommand>
      </IppScreen></IppDisplay>)");
    auto commands = children<AGPIppCommand>(screen(0), AGPObjectTypeInfo::ti_IppCommand);
    ASSERT_EQ(commands.size(), 6u);

    KeyValues pairs;
    for (AGPIppCommand* command : commands) {
        command->gatherKeyValues(pairs);
    }
    EXPECT_EQ(pairs, (KeyValues{{"k", ""}, {"null", "v"}})) << "a command without Key and Value adds nothing";

    EXPECT_EQ(commands[0]->getMenuCommand()->getBasicText(), "Exit");
    EXPECT_EQ(commands[0]->getMenuCommand()->getId(), AGPMessage::Command_Exit);
    EXPECT_EQ(commands[1]->getScreenID(), 0u);
    EXPECT_EQ(commands[1]->getMenuCommand()->getId(), AGPMessage::Command_Screen);
    EXPECT_EQ(commands[2]->getMenuCommand()->getBasicText(), "Zurueck");
    EXPECT_EQ(commands[2]->getMenuCommand()->getId(), AGPMessage::Command_Back);
    EXPECT_EQ(commands[2]->getScreenID(), 4u);
    EXPECT_EQ(commands[2]->getMenuCommand()->getOwnerId(), commands[2]->getAGPObjectID());

    EXPECT_TRUE(*commands[2] == *commands[4]) << "Select and Default do not count";
    EXPECT_FALSE(*commands[2] == *commands[5]) << "the Label content counts";
    EXPECT_FALSE(AGPIppCommand::compareByUniqueness(commands[2], commands[2]));
    EXPECT_TRUE(AGPIppCommand::compareByUniqueness(commands[2], nullptr));
    EXPECT_FALSE(AGPIppCommand::compareByUniqueness(nullptr, commands[2]));

    std::vector<AGPIppCommand*> sorted = {commands[2], commands[1], commands[5]};
    std::stable_sort(sorted.begin(), sorted.end(), AGPIppCommand::compareByPriority);
    EXPECT_EQ(sorted, (std::vector<AGPIppCommand*>{commands[1], commands[2], commands[5]}));

    std::vector<AGPIppCommand*> unique = {commands[2], commands[0], commands[4], commands[5], commands[0]};
    AGPIppCommand::removeDuplicitCommands(unique);
    EXPECT_EQ(unique, (std::vector<AGPIppCommand*>{commands[5], commands[0], commands[2]}))
        << "first of each group kept, in reverse order";
}

TEST_F(ScreenElements, RequestsCarryPairsHiddenDataAndExactEncoding) {
    install(R"(<IppDisplay><IppScreen HiddenCount="3">
        <IppHidden Key="tel" Type="PHONENUMBER"><Value>ignored</Value></IppHidden>
        <IppHidden Key="ip" Type="IPADDRESS"/>
        <IppHidden Key="a" Type="VALUE"/>
        <IppHidden Key="late" Type="VALUE"><Value>not counted</Value></IppHidden>
      </IppScreen></IppDisplay>)",
            "http://127.0.0.1:8080/p");
    requests();

    KeyValues pairs{{"b", "2"}, {"a", "1"}, {"a", "0"}, {"x y&z", "\xC3\xA4/=?~"}, {"B", ""}};
    mForm->reReadFromUrl(pairs);
    std::vector<Request> sent = requests();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].type, "UrlRequest_XML");
    EXPECT_EQ(sent[0].content, "http://127.0.0.1:8080/p?B=&a=1&a=0&a=&b=2&ip=192.0.2.7&tel=%2B49%2089%204711"
                               "&x%20y%26z=%C3%A4%2F%3D%3F~")
        << "byte-wise key order, insertion order for equal keys, hidden pairs after the given ones";

    std::string url = "http://h/p?x=1";
    KeyValues one{{"k", "v"}};
    AGPIppScreen::appendUrlEncodedKeyValues(one, url);
    EXPECT_EQ(url, "http://h/p?x=1&k=v");
    url = "http://h/p?";
    AGPIppScreen::appendUrlEncodedKeyValues(one, url);
    EXPECT_EQ(url, "http://h/p?&k=v");
    KeyValues none;
    AGPIppScreen::appendUrlEncodedKeyValues(none, url);
    EXPECT_EQ(url, "http://h/p?&k=v");
}

TEST_F(ScreenElements, ExitAndReRequestsAndMissingUrl) {
    install(R"(<IppDisplay><IppScreen/></IppDisplay>)", "");
    requests();
    KeyValues pairs;
    mForm->reReadFromUrl(pairs);
    EXPECT_TRUE(requests().empty()) << "no Url, no request";

    mForm->exitURL(pairs);
    std::vector<Request> sent = requests();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].type, "UrlRequest_Exit");
    EXPECT_EQ(sent[0].content, "");

    KeyValues exitPair{{"k", ""}};
    mForm->exitURL(exitPair);
    sent = requests();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].content, "?k=");

    screen(0)->resendOriginatingURL(true);
    EXPECT_TRUE(requests().empty()) << "no originating URI, nothing to resend";
    screen(0)->setOriginatingUri("http://127.0.0.1/p?a=1");
    screen(0)->resendOriginatingURL(true);
    screen(0)->resendOriginatingURL(false);
    sent = requests();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].type, "UrlRequest_XML_cache_expired_back");
    EXPECT_EQ(sent[0].content, "http://127.0.0.1/p?a=1");
    EXPECT_EQ(sent[1].type, "UrlRequest_XML_cache_expired_screenId");
}

TEST_F(ScreenElements, CommandCountBackAndAutomaticTimer) {
    install(R"(<IppDisplay><IppScreen CommandCount="4">
        <IppCommand Type="UPDATE" Auto="5"/>
        <IppCommand Type="SELECT" Auto="3"/>
        <IppCommand Type="ACTION" Auto="3"/>
        <IppCommand Type="BACK" Auto="1" Event="ONFOCUS"/>
        <IppCommand Type="SELECT" Auto="1"/>
      </IppScreen></IppDisplay>)",
            "http://h/p");
    auto commands = children<AGPIppCommand>(screen(0), AGPObjectTypeInfo::ti_IppCommand);
    EXPECT_EQ(mForm->mCommands, (std::vector<AGPIppCommand*>(commands.begin(), commands.begin() + 4)));
    EXPECT_TRUE(screen(0)->hasBackCommand());
    EXPECT_TRUE(screen(0)->hasBack());
    EXPECT_EQ(mForm->getTimerCommand(), commands[1])
        << "the smallest Auto wins, the first of equals stays, an Event command never drives the timer";
    EXPECT_EQ(mForm->getTimer(), nullptr) << "without the GUI handler's listener no timer is made";

    NoListener listener;
    mForm->initTimer(&listener);
    ASSERT_NE(mForm->getTimer(), nullptr);
    EXPECT_EQ(mForm->getTimerDuration(), 3000u);
    mForm->startTimer();
    EXPECT_TRUE(mForm->isTimerRunning());
    mForm->stopTimer();
    EXPECT_EQ(mForm->getTimer(), nullptr);
    EXPECT_FALSE(mForm->isTimerRunning());
    mForm->initTimer(&listener); // left for the destructor to delete
}

TEST_F(ScreenElements, FocusEventCommandsSendTheirPair) {
    install(R"(<IppDisplay><IppScreen CommandCount="9">
        <IppCommand Type="BACK" DisplayOn="NONE" Event="ONFOCUS" Key="back"/>
        <IppCommand Type="SELECT" DisplayOn="BOTH" Event="ONFOCUS" Key="shown"/>
        <IppCommand Type="SELECT" DisplayOn="NONE" Event="ONFOCUS" Key="focus" Value="1"/>
        <IppCommand Type="UPDATE" DisplayOn="NONE" Event="ONFOCUS" Key="again"/>
        <IppCommand Type="ACTION" DisplayOn="NONE" Event="ONBLUR" Key="blur" Auto="2"/>
        <IppCommand Type="ACTION" DisplayOn="NONE" Key="none"/>
      </IppScreen></IppDisplay>)",
            "http://h/p");
    auto commands = children<AGPIppCommand>(screen(0), AGPObjectTypeInfo::ti_IppCommand);
    EXPECT_EQ(mForm->findObservedEventCommand(AGPIppCommand::ONFOCUS), commands[2]);
    EXPECT_EQ(mForm->findObservedEventCommand(AGPIppCommand::ONBLUR), commands[4]);
    EXPECT_EQ(mForm->getTimerCommand(), nullptr);
    const std::string id = std::to_string(mForm->getAGPObjectID());
    bool ignoredLogged = false;
    for (const std::string& text : mLog.texts("AGPObject")) {
        ignoredLogged |= text.rfind("observeEventCommand: command event [1] already observed on displayable "
                                    "[ti_IppForm]",
                                    0) == 0 &&
                         text.find("[AGPId " + id + "] - will be ignored") != std::string::npos;
    }
    EXPECT_TRUE(ignoredLogged);
    EXPECT_TRUE(mLog.contains("AGPObject", 5, "observeEventCommand: unsupported event [0] received"));
    requests();

    mForm->processNotifyEvent(AGPIppCommand::ONFOCUS);
    mForm->processNotifyEvent(AGPIppCommand::ONBLUR);
    std::vector<Request> sent = requests();
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].content, "http://h/p?focus=1");
    EXPECT_EQ(sent[1].content, "http://h/p?blur=");
}

TEST_F(ScreenElements, ActionsRunOncePerTypeAndScreenActionsOncePerDocument) {
    install(R"(<IppDisplay><IppScreen ID="3">
        <IppAction Type="TURNLEDON"/><IppAction Type="TURNLEDON"/><IppAction Type="HIDEPOPUP"/>
        <IppCommand Type="ACTION"><IppAction Type="ENDCALL"/><IppAction Type="MAKECALL" Focus="no"/>
          <IppAction Type="PLAYTONE"/><IppAction Type="TURNLEDOFF"/></IppCommand>
      </IppScreen></IppDisplay>)");
    auto actions = children<AGPIppAction>(screen(0), AGPObjectTypeInfo::ti_IppAction);
    ASSERT_EQ(actions.size(), 3u);
    screen(0)->invokeActions();
    EXPECT_TRUE(actions[0]->isDone());
    EXPECT_FALSE(actions[1]->isDone()) << "only the first action of a type runs";
    EXPECT_FALSE(actions[2]->isDone()) << "HIDEPOPUP runs on every showing";

    auto command = children<AGPIppCommand>(screen(0), AGPObjectTypeInfo::ti_IppCommand).at(0);
    auto inCommand = children<AGPIppAction>(command, AGPObjectTypeInfo::ti_IppAction);
    ASSERT_EQ(inCommand.size(), 3u);
    EXPECT_TRUE(inCommand[1]->isFocus()) << "lower-case no means yes";
    command->invokeAction();
    EXPECT_TRUE(inCommand[0]->isDone()) << "ENDCALL without a number still clears the call";
    EXPECT_FALSE(inCommand[1]->isDone()) << "MAKECALL without a number does nothing";
    EXPECT_FALSE(inCommand[2]->isDone()) << "PLAYTONE without a tone does nothing";
}
