// Tests of the configuration store: the key=value file, reads, and change notifications.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "config/ConfigurationKeys.h"
#include "config/ConfigurationStore.h"
#include "config/ManageableData.h"
#include "config/MgmtAgentIfc.h"
#include "events/EventLoop.h"
#include "logging/LogCapture.h"

namespace {

class TempFile {
public:
    explicit TempFile(const std::string& contents) {
        mPath =
            testing::TempDir() + "agp_config_" + std::to_string(getpid()) + "_" + std::to_string(sCounter++);
        std::ofstream(mPath) << contents;
    }
    ~TempFile() { std::remove(mPath.c_str()); }
    const std::string& path() const { return mPath; }

private:
    static inline int sCounter = 0;
    std::string mPath;
};

struct Notification {
    std::vector<std::pair<std::string, std::string>> values;
    bool onLoopThread = false;
};

class RecordingAgent : public MgmtAgentIfc {
public:
    explicit RecordingAgent(EventLoop& loop) : mLoop(loop) {}
    void manageableDataChanged(ManageableData& data) override {
        Notification notification;
        notification.onLoopThread = mLoop.isLoopThread();
        std::vector<std::string> rootIds;
        data.getRootIds(rootIds);
        for (const std::string& rootId : rootIds) {
            std::string value;
            data.interogate(rootId, rootId, value);
            notification.values.emplace_back(rootId, value);
        }
        notifications.push_back(notification);
    }
    std::vector<Notification> notifications;

private:
    EventLoop& mLoop;
};

std::string readValue(ConfigurationStore& store, const std::string& key) {
    ManageableData query;
    query.addRootId(key, nullptr);
    EXPECT_TRUE(store.read(query));
    std::string value = "unset";
    EXPECT_TRUE(query.interogate(key, "", value));
    return value;
}

} // namespace

TEST(ConfigurationStore, ReportsEveryBadLineWithFileAndLineAndKeepsTheOldContents) {
    EventLoop loop;
    ConfigurationStore store(loop);
    ASSERT_TRUE(store.setValue("language", "en"));
    TempFile file("# phone\n\napp-name-1=Weather\nthis line has no equals\n= nothing\nbogus-key=1\n"
                  "app-name-21=Too far\napp-name-1=Again\nserver port-1=80\n");
    LogCapture capture(2);
    std::vector<std::string> problems;
    EXPECT_FALSE(store.loadFile(file.path(), problems));
    const std::string& p = file.path();
    const std::vector<std::string> expected = {p + ":4: expected key=value",
                                               p + ":5: empty key",
                                               p + ":6: unknown key 'bogus-key'",
                                               p + ":7: unknown key 'app-name-21'",
                                               p + ":8: key 'app-name-1' already set on line 3",
                                               p + ":9: blank inside key 'server port-1'"};
    EXPECT_EQ(problems, expected);
    EXPECT_TRUE(capture.contains("ConfigurationStore", 2, p + ":6: unknown key 'bogus-key'"));
    EXPECT_EQ(store.getValue("app-name-1"), "") << "a bad file changes nothing";
    EXPECT_EQ(store.getValue("language"), "en");

    problems.clear();
    EXPECT_FALSE(store.loadFile(p + ".missing", problems));
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0], p + ".missing: cannot be opened");

    problems.clear();
    TempFile anyKeys("bogus-key=1\n");
    EXPECT_TRUE(store.loadFile(anyKeys.path(), problems, false))
        << "unknown keys are only the host's concern";
    EXPECT_EQ(store.getValue("bogus-key"), "1");
}

TEST(ConfigurationStore, ReadsValuesByRootIdInQueryOrder) {
    EventLoop loop;
    ConfigurationStore store(loop);
    TempFile file("  app-name-7 = Weather \nrelated-device-type=Veltria 80\nprogram-name-7=start?a=1#top\n"
                  "app-name-2=Weather\r\n");
    std::vector<std::string> problems;
    ASSERT_TRUE(store.loadFile(file.path(), problems)) << (problems.empty() ? "" : problems[0]);

    ManageableData query;
    for (int i = 20; i >= 1; --i) {
        query.addRootId("app-name-" + std::to_string(i), nullptr);
    }
    query.addRootId("app-name-20");
    ASSERT_TRUE(store.read(query));
    std::vector<std::string> rootIds;
    query.getRootIds(rootIds);
    ASSERT_EQ(rootIds.size(), 20u) << "a root id added twice is asked once";
    EXPECT_EQ(rootIds.front(), "app-name-20");
    EXPECT_EQ(rootIds.back(), "app-name-1");

    std::string value;
    EXPECT_TRUE(query.interogate("app-name-7", "app-name-7", value));
    EXPECT_EQ(value, "Weather");
    EXPECT_TRUE(query.interogate("app-name-2", "value", value));
    EXPECT_EQ(value, "Weather") << "a CR of a CRLF file is not part of the value";
    EXPECT_TRUE(query.interogate("app-name-3", "", value));
    EXPECT_EQ(value, "") << "a key without value reads as empty";
    EXPECT_FALSE(query.interogate("ipaddress", "", value)) << "not in the record";
    EXPECT_FALSE(query.interogate("app-name-7", "colour", value));
    EXPECT_EQ(value, "");

    EXPECT_EQ(readValue(store, "related-device-type"), "Veltria 80");
    EXPECT_EQ(readValue(store, "program-name-7"), "start?a=1#top");
}

TEST(ConfigurationStore, NotifiesSubscribersOfRealChangesOnTheEventLoop) {
    EventLoop loop;
    ConfigurationStore store(loop);
    RecordingAgent agent(loop);
    ASSERT_TRUE(store.setValues({{"ipaddress", "10.0.0.1"}, {"language", "en"}}));
    EXPECT_FALSE(store.subscribe("ipaddress", &agent, 2)) << "only mode 1 exists";
    EXPECT_FALSE(store.subscribe("ipaddress", nullptr, 1));
    ASSERT_TRUE(store.subscribe("ipaddress", &agent, 1));
    ASSERT_TRUE(store.subscribe("language", &agent, 1));
    ASSERT_TRUE(store.subscribe("language", &agent, 1));

    ASSERT_TRUE(store.setValues({{"server-addr-1", "srv"}, {"language", "de"}, {"ipaddress", "10.0.0.2"}}));
    loop.drain();
    ASSERT_EQ(agent.notifications.size(), 1u) << "one notification per change, even for two keys";
    EXPECT_TRUE(agent.notifications[0].onLoopThread);
    const std::vector<std::pair<std::string, std::string>> expected = {{"language", "de"},
                                                                       {"ipaddress", "10.0.0.2"}};
    EXPECT_EQ(agent.notifications[0].values, expected);

    ASSERT_TRUE(store.setValue("language", "de"));
    loop.drain();
    EXPECT_EQ(agent.notifications.size(), 1u) << "the same value again is no change";

    EXPECT_TRUE(store.unsubscribe("language", &agent, 1));
    EXPECT_FALSE(store.unsubscribe("language", &agent, 1));
    ASSERT_TRUE(store.setValues({{"language", "fr"}, {"ipaddress", ""}}));
    loop.drain();
    ASSERT_EQ(agent.notifications.size(), 2u);
    const std::vector<std::pair<std::string, std::string>> cleared = {{"ipaddress", ""}};
    EXPECT_EQ(agent.notifications[1].values, cleared) << "an emptied key is a change too";

    EXPECT_TRUE(store.unsubscribe("ipaddress", &agent, 1));
    ASSERT_TRUE(store.setValue("ipaddress", "10.0.0.3"));
    loop.drain();
    EXPECT_EQ(agent.notifications.size(), 2u);
}

TEST(ConfigurationStore, SavesAndReloadsAndRefusesValuesTheFileCannotHold) {
    EventLoop loop;
    ConfigurationStore store(loop);
    EXPECT_FALSE(store.setValue("bad key", "x"));
    EXPECT_FALSE(store.setValue("a=b", "x"));
    EXPECT_FALSE(store.setValue("#comment", "x"));
    EXPECT_FALSE(store.setValue("language", "two\nlines"));
    EXPECT_FALSE(store.setValues({{"language", "de"}, {"", "x"}}));
    EXPECT_EQ(store.getValue("language"), "") << "a refused batch changes nothing";

    ASSERT_TRUE(
        store.setValues({{"app-name-1", "Weather"}, {"display-skin", "1"}, {"server-addr-1", "a=b#c"}}));
    TempFile file("");
    std::string problem;
    ASSERT_TRUE(store.saveFile(file.path(), problem)) << problem;

    ConfigurationStore reloaded(loop);
    RecordingAgent agent(loop);
    ASSERT_TRUE(reloaded.setValue("language", "en"));
    ASSERT_TRUE(reloaded.subscribe("language", &agent, 1));
    std::vector<std::string> problems;
    ASSERT_TRUE(reloaded.loadFile(file.path(), problems));
    EXPECT_EQ(reloaded.getValues(), store.getValues());
    loop.drain();
    ASSERT_EQ(agent.notifications.size(), 1u) << "a key the new file lacks is cleared and reported";
    EXPECT_EQ(agent.notifications[0].values[0].second, "");

    EXPECT_FALSE(store.saveFile(testing::TempDir() + "no/such/dir/config", problem));
    EXPECT_FALSE(problem.empty());
}

TEST(ConfigurationKeys, KnowsApplicationKeysOneToTwentyAndPhoneWideKeys) {
    EXPECT_TRUE(ConfigurationKeys::isKnown("app-name-1"));
    EXPECT_TRUE(ConfigurationKeys::isKnown("tab3-app-name-20"));
    EXPECT_TRUE(ConfigurationKeys::isKnown("video-on"));
    EXPECT_FALSE(ConfigurationKeys::isKnown("app-name-0"));
    EXPECT_FALSE(ConfigurationKeys::isKnown("app-name-07"));
    EXPECT_FALSE(ConfigurationKeys::isKnown("app-name-"));
    EXPECT_FALSE(ConfigurationKeys::isKnown("ipaddress-1"));
    EXPECT_EQ(ConfigurationKeys::applicationPrefixes().size(), 20u);
    EXPECT_EQ(ConfigurationKeys::phoneWideKeys().size(), 12u);
}
