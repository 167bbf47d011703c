// Tests of the GUI handler: installing documents, history and cache, back and screen by ID, tabs.
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "AGPCommandListener.h"
#include "AGPDisplayable.h"
#include "AGPGUIHandler.h"
#include "AGPIppScreen.h"
#include "AGPMessageQueueHandler.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "AGPServerConnection.h"
#include "AGPXMLParser.h"
#include "display/Alert.h"
#include "display/Command.h"
#include "display/Display.h"
#include "display/Form.h"
#include "display/List.h"
#include "events/EventLoop.h"
#include "logging/LogCapture.h"

namespace {

using Type = AGPObjectTypeInfo::AGPObjectType;

// Stands in for the full-screen elements: owns a real widget of the kind its type names.
class FakeFullScreen : public AGPDisplayable {
public:
    FakeFullScreen(Type type, const std::string& title, bool back) : mType(type), mBack(back) {
        registerElement();
        if (type == AGPObjectTypeInfo::ti_IppAlert) {
            mWidget = new DisplayAPI::Alert(title, "text", nullptr, DisplayAPI::ALERT_INFO);
        } else if (type == AGPObjectTypeInfo::ti_IppForm) {
            mWidget = new DisplayAPI::Form();
        } else {
            mWidget = new DisplayAPI::List(1);
        }
        mWidget->setTitle(title);
        mWidget->setOwnerId(getAGPObjectID());
    }
    ~FakeFullScreen() override {
        unregisterElement();
        delete mWidget;
    }
    AGPObjectType getAGPObjectType() override { return mType; }
    DisplayAPI::Displayable* getDisplayAPIDisplayable() override { return mWidget; }
    bool hasBack() override { return mBack; }

private:
    Type mType;
    bool mBack;
    DisplayAPI::Displayable* mWidget;
};

struct Fake {
    Type type;
    bool back = true;
};

const Fake kList{AGPObjectTypeInfo::ti_IppList};
const Fake kForm{AGPObjectTypeInfo::ti_IppForm};
const Fake kAlert{AGPObjectTypeInfo::ti_IppAlert};
const Fake kNone{AGPObjectTypeInfo::ti_NoType};
const std::string kUrl = "http://127.0.0.1:1/app";

class GUIHandlerTest : public ::testing::Test {
protected:
    void SetUp() override {
        display = std::make_unique<DisplayAPI::Display>(loop, DisplayAPI::DisplayModel());
        AGPPhoneletManager::getAGPServerConnection();
        AGPPhoneletManager::getAGPXMLParser();
        gui = AGPPhoneletManager::getAGPGUIHandler();
        ASSERT_TRUE(AGPPhoneletManager::getAGPMessageQueueHandler()->startAGPMessageQueueHandler(4));
        ASSERT_TRUE(gui->startAGPGUIHandler(display.get(), nullptr));
        gui->show();
        settle();
    }
    void TearDown() override {
        AGPPhoneletManager::shutdownPhonelet();
        display->waitUntilSettled();
    }

    // Parses `xml` and gives screen i the stand-in element fakes[i], titled "<tag> <screen ID>".
    AGPCommonBase* build(std::string xml, const std::vector<Fake>& fakes, const std::string& tag = "screen") {
        AGPCommonBase* root = nullptr;
        EXPECT_TRUE(AGPPhoneletManager::getAGPXMLParser()->parseXMLData(xml, root));
        std::vector<AGPCommonBase*> screens;
        root->getChildrenByType(AGPObjectTypeInfo::ti_IppScreen, screens);
        for (size_t i = 0; i < screens.size() && i < fakes.size(); ++i) {
            if (fakes[i].type == AGPObjectTypeInfo::ti_NoType) {
                continue;
            }
            auto* screen = static_cast<AGPIppScreen*>(screens[i]);
            auto* element = new FakeFullScreen(fakes[i].type, tag + " " + std::to_string(screen->getAGPID()),
                                               fakes[i].back);
            EXPECT_TRUE(screen->addChild(*element));
            element->setParent(screen);
        }
        return root;
    }
    AGPCommonBase* screens(const std::vector<int>& ids, const std::vector<Fake>& fakes,
                           const std::string& attributes = "", const std::string& tag = "screen") {
        std::string xml = "<IppDisplay" + attributes + ">";
        for (int id : ids) {
            xml += "<IppScreen ID=\"" + std::to_string(id) + "\"/>";
        }
        return build(xml + "</IppDisplay>", fakes, tag);
    }
    // Runs `work` on the queue's thread, where the phonelet installs documents and runs commands,
    // and answers what it answered.
    template <typename Work> auto onQueue(AGPQueueNumber queue, Work work) -> decltype(work()) {
        std::packaged_task<decltype(work())()> task(work);
        auto result = task.get_future();
        gui->runOnQueue(queue, [&task] { task(); });
        return result.get();
    }
    bool install(AGPCommonBase* root, AGPQueueNumber queue = 0,
                 long validity = AGPServerConnection::CACHE_TIMEVALID_FOREVER,
                 AGPMessage::MessageType type = AGPMessage::UrlRequest_XML) {
        const bool installed = onQueue(
            queue, [&] { return gui->processXmlTreeObject(root, queue, type, kUrl, validity, true); });
        if (!installed && root != nullptr) {
            AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
        }
        return installed;
    }
    // Installs one screen of that ID with a list on `queue` and returns the screen's identifier.
    AGPId installList(int id, AGPQueueNumber queue = 0,
                      long validity = AGPServerConnection::CACHE_TIMEVALID_FOREVER,
                      const std::string& attributes = "", Fake fake = kList) {
        AGPCommonBase* root =
            build("<IppDisplay><IppScreen ID=\"" + std::to_string(id) + "\"" + attributes + "/></IppDisplay>",
                  {fake});
        EXPECT_TRUE(install(root, queue, validity));
        AGPIppScreen* shown = gui->getCurrentScreen(queue);
        return shown != nullptr ? shown->getAGPObjectID() : 0;
    }
    // Tabbing, and whatever one tab does to another's screens, finishes on the queue threads:
    // each round lets every queue finish what the round before started there.
    void tab(int direction) {
        gui->tab(direction);
        settle();
    }
    void settle() {
        for (int round = 0; round < 3; ++round) {
            for (AGPQueueNumber queue = 0; queue < AGPGUIHandler::QUEUE_COUNT; ++queue) {
                std::promise<void> done;
                gui->runOnQueue(queue, [&done] { done.set_value(); });
                done.get_future().wait();
            }
        }
    }
    std::string title(const char* part) {
        nlohmann::json snapshot = display->snapshot();
        return snapshot[part].is_null() ? "" : snapshot[part]["title"].get<std::string>();
    }
    static bool logged(const LogCapture& log, const std::string& module, const std::string& part) {
        for (const std::string& text : log.texts(module)) {
            if (text.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    bool exists(AGPId id) { return AGPPhoneletManager::getAGPObjectMap()->getAGPObject(id) != nullptr; }

    EventLoop loop;
    std::unique_ptr<DisplayAPI::Display> display;
    AGPGUIHandler* gui = nullptr;
};

} // namespace

TEST_F(GUIHandlerTest, InstallsDocumentsAndRefusesBadRoots) {
    LogCapture log(5);
    EXPECT_FALSE(install(nullptr));
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "Received NULL pointer for xmlTreeObject"));
    EXPECT_FALSE(install(build("<Text>x</Text>", {})));
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "Invalid root element detected"));
    EXPECT_FALSE(install(screens({1}, {kNone})));
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "Nothing to display in first XML document"));
    EXPECT_TRUE(install(screens({1}, {kNone}, "", "error"), 2, 0, AGPMessage::UrlRequest_Display_Error));
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "processXmlTreeObject: tab for queue 2 is not initialised"));
    EXPECT_EQ(display->snapshot()["screen"], nullptr) << "nothing installed so far";

    // The update screen comes first, then the initial screen, which can go back to it.
    AGPCommonBase* root =
        screens({1, 2, 3}, {kList, kList, kList}, " InitialScreen=\"3\" UpdateScreen=\"1\"");
    ASSERT_TRUE(onQueue(0, [&] {
        return gui->processXmlTreeObject(root, 0, AGPMessage::UrlRequest_XML, kUrl, 4000000000L / 2, true);
    }));
    EXPECT_EQ(title("screen"), "screen 3");
    auto* initial = dynamic_cast<AGPIppScreen*>(root);
    ASSERT_NE(initial, nullptr);
    EXPECT_EQ(initial->getAGPID(), 3u);
    EXPECT_EQ(initial->getOriginatingUri(), kUrl);
    EXPECT_EQ(initial->getCacheExpirationTime(), 2000000000L);
    EXPECT_EQ(initial->getParent(), nullptr);
    EXPECT_EQ(gui->getCache(0).size(), 3u);
    EXPECT_EQ(gui->getCache(0).back(), initial->getAGPObjectID());
    EXPECT_EQ(AGPPhoneletManager::getAGPObjectMap()->getTypeCount("ti_IppDisplay"), 0) << "display destroyed";
    ASSERT_EQ(gui->getHistory(0).size(), 1u);
    onQueue(0, [&] { gui->commandShowScreenBack(0, true); });
    EXPECT_EQ(title("screen"), "screen 1");

    // Later documents may show nothing; a screen without full-screen element is not cached.
    EXPECT_TRUE(install(screens({7}, {kNone})));
    EXPECT_EQ(title("screen"), "screen 1");
    EXPECT_EQ(gui->getCache(0).size(), 3u);
}

TEST_F(GUIHandlerTest, CacheKeepsTwentyScreensPerQueueAndTrimsTheHistory) {
    std::vector<AGPId> shown;
    for (int id = 1; id <= 21; ++id) {
        shown.push_back(installList(id));
    }
    EXPECT_EQ(gui->getCache(0).size(), 20u);
    EXPECT_FALSE(exists(shown[0])) << "the least recently shown screen is destroyed";
    EXPECT_TRUE(exists(shown[1]));
    const std::vector<AGPId> history = gui->getHistory(0);
    EXPECT_EQ(std::count(history.begin(), history.end(), shown[0]), 0);
    EXPECT_EQ(history.size(), 19u);
    EXPECT_TRUE(gui->getCache(1).empty()) << "other queues keep their own cache";
}

TEST_F(GUIHandlerTest, NewCopyOfAScreenReplacesOneOlderCopyOfTheSameKind) {
    const AGPId form = installList(5, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kForm);
    const AGPId list = installList(5);
    EXPECT_TRUE(exists(form)) << "a list with a way back is kept, and a form is of another kind";
    const AGPId noBack =
        installList(6, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", Fake{kList.type, false});
    EXPECT_TRUE(gui->getHistory(0).empty()) << "a screen without a way back clears the history";
    const AGPId newForm = installList(5, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kForm);
    EXPECT_FALSE(exists(form));
    EXPECT_TRUE(exists(list));
    EXPECT_TRUE(exists(noBack));
    EXPECT_EQ(gui->getCache(0), (std::vector<AGPId>{list, noBack, newForm}));

    auto* screen = dynamic_cast<AGPIppScreen*>(AGPPhoneletManager::getAGPObjectMap()->getAGPObject(newForm));
    EXPECT_FALSE(gui->eraseSameScreenID(nullptr, 0));
    EXPECT_FALSE(gui->eraseSameScreenID(screen, 0)) << "stops at its own entry";
    EXPECT_FALSE(gui->isInHistory(nullptr, 0));
}

TEST_F(GUIHandlerTest, BackAndScreenByID) {
    LogCapture log(6);
    onQueue(0, [&] { gui->commandShowScreenBack(0, true); });
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "commandShowScreenBack: Previous screen requested"));

    installList(1, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, " History=\"NO\"");
    installList(2, 0, AGPServerConnection::CACHE_TIMEVALID_NEVER);
    EXPECT_TRUE(gui->getHistory(0).empty()) << "History NO keeps a screen out";
    onQueue(0, [&] { gui->commandShowScreenBack(0, true); });
    EXPECT_EQ(title("screen"), "screen 2") << "Back with an empty history does nothing";

    installList(3);
    ASSERT_EQ(gui->getHistory(0).size(), 1u);
    onQueue(0, [&] { gui->commandShowScreenBack(0, true); });
    EXPECT_EQ(title("screen"), "screen 3") << "an expired screen is asked for again, not shown";
    EXPECT_TRUE(gui->getHistory(0).empty());
    EXPECT_TRUE(logged(log, "AGPMessageQueueHandler", "type: UrlRequest_XML_cache_expired_back"));
    EXPECT_TRUE(logged(log, "AGPMessageQueueHandler", "Message content: " + kUrl));

    // Two cached copies of ID 4: screen by ID takes the most recently shown one.
    install(screens({4}, {kList}, "", "old"));
    install(screens({9, 4}, {kList, kList}, " InitialScreen=\"9\"", "new"));
    EXPECT_EQ(title("screen"), "new 9");
    onQueue(0, [&] { gui->commandShowScreenID(4, 0, true); });
    EXPECT_EQ(title("screen"), "new 4");
    onQueue(0, [&] { gui->commandShowScreenID(77, 0, true); });
    EXPECT_EQ(title("screen"), "new 4");
    onQueue(0, [&] { gui->commandShowScreenBack(0, true); });
    EXPECT_EQ(title("screen"), "new 9");
}

TEST_F(GUIHandlerTest, AlertOverAScreenAndBack) {
    const AGPId form = installList(1, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kForm);
    installList(2, 0, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kAlert);
    EXPECT_EQ(title("screen"), "screen 1") << "the form stays underneath";
    EXPECT_EQ(title("popup"), "screen 2");
    auto* formScreen = dynamic_cast<AGPIppScreen*>(AGPPhoneletManager::getAGPObjectMap()->getAGPObject(form));
    EXPECT_FALSE(formScreen->isRedisplayNeeded()) << "an alert does not hide the screen under it";
    EXPECT_EQ(gui->getHistory(0), std::vector<AGPId>{form});
    onQueue(0, [&] { gui->commandAlertBack(0, true); });
    EXPECT_EQ(title("popup"), "");
    EXPECT_EQ(title("screen"), "screen 1");
}

TEST_F(GUIHandlerTest, TabsShareTheDisplayOnceASecondTabExists) {
    LogCapture log(5);
    ASSERT_TRUE(gui->initTabScreen(0, nullptr));
    EXPECT_FALSE(gui->initTabScreen(0, nullptr));
    EXPECT_FALSE(gui->initTabScreen(3, nullptr));
    installList(1, 1);
    nlohmann::json snapshot = display->snapshot();
    EXPECT_TRUE(snapshot["tabBar"].is_null()) << "one tab is shown directly";
    EXPECT_EQ(title("screen"), "screen 1");

    ASSERT_TRUE(gui->initTabScreen(1, nullptr));
    settle();
    EXPECT_EQ(display->snapshot()["tabBar"]["labels"].size(), 2u) << "the second tab brings the tab screen";
    installList(2, 2);
    settle();
    snapshot = display->snapshot();
    EXPECT_EQ(snapshot["tabBar"]["current"], 0);
    EXPECT_EQ(title("screen"), "screen 1") << "the first tab's screen was pulled into its tab";
    tab(1);
    EXPECT_EQ(title("screen"), "screen 2");
    EXPECT_EQ(gui->getMessageQueueIdForCurrent(), 2);

    installList(3, 2, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kAlert);
    EXPECT_EQ(title("popup"), "screen 3");
    EXPECT_NE(gui->getAlertId(2), 0u);
    tab(1);
    EXPECT_TRUE(
        log.contains("AGPGUIHandler", 5, "AGPGUIHandler::tab() Alert or Player displayed, disable tabbing"));
    EXPECT_EQ(display->snapshot()["tabBar"]["current"], 1);

    onQueue(2, [&] { gui->commandAlertBack(2, true); });
    EXPECT_EQ(gui->getAlertId(2), 0u);
    EXPECT_EQ(title("screen"), "screen 2");
    tab(-1);
    EXPECT_EQ(title("screen"), "screen 1");
}

TEST_F(GUIHandlerTest, CommandWithoutElementGoesToTheCurrentDisplayable) {
    LogCapture log(5);
    AGPCommandListener* listener = gui->getCommandListener();
    listener->commandAction(DisplayAPI::Command::standard(DisplayAPI::Command::OK), nullptr);
    EXPECT_TRUE(log.contains("AGPGUIHandler", 5, "No element found for command"));
    installList(1);
    AGPDisplayable* current = gui->getCurrentDisplayable();
    ASSERT_NE(current, nullptr);
    listener->commandAction(DisplayAPI::Command::standard(DisplayAPI::Command::OK), nullptr);
    EXPECT_TRUE(
        logged(log, "AGPGUIHandler", "AGPID=" + std::to_string(current->getAGPObjectID()) + " (ti_IppList)"));
}

TEST_F(GUIHandlerTest, LeavingTheOnlyAlertOfATabClosesTheTab) {
    for (int tab = 0; tab < 3; ++tab) {
        ASSERT_TRUE(gui->initTabScreen(tab, nullptr));
    }
    installList(1, 1);
    installList(2, 2, AGPServerConnection::CACHE_TIMEVALID_FOREVER, "", kAlert);
    installList(3, 3);
    EXPECT_EQ(gui->queueIdToTabIdx(3), 2);
    onQueue(2, [&] { gui->commandAlertBack(2, true); });
    EXPECT_FALSE(gui->isTabInitialized(1));
    EXPECT_EQ(gui->queueIdToTabIdx(3), 1) << "the tabs after the closed one move down";
    EXPECT_EQ(gui->tabIdxToQueueId(1), 3);
    EXPECT_EQ(display->snapshot()["tabBar"]["labels"].size(), 2u);
    EXPECT_EQ(gui->getAlertId(2), 0u);
    EXPECT_EQ(gui->getCurrentScreen(2), nullptr);
    tab(1);
    EXPECT_EQ(title("screen"), "screen 3");
    EXPECT_TRUE(gui->getCache(2).empty()) << "the closed tab's cached screens are dropped";
    EXPECT_FALSE(gui->getCache(3).empty());
}
