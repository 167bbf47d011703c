// Tests of the platform core: locks, threads, logging, translation, URI coding, conversions.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "events/EventLoop.h"
#include "logging/Log.h"
#include "logging/LogCapture.h"
#include "text/TranslationInfo.h"
#include "text/Translator.h"
#include "threads/CriticalSection.h"
#include "threads/Semaphore.h"
#include "threads/ThreadActivity.h"
#include "threads/Threader.h"
#include "uri/GPALAdmin.h"
#include "util/ClientUtils.h"

TEST(Semaphore, BinaryCountingAndReentrantBehaviour) {
    Semaphore binary(1, 1, false);
    EXPECT_TRUE(binary.take(-1));
    EXPECT_FALSE(binary.take(20)) << "a binary, non re-entrant semaphore blocks its own holder";
    EXPECT_TRUE(binary.give());
    EXPECT_FALSE(binary.give()) << "a give past the maximum is refused";

    Semaphore counting(0, -1, false);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(counting.give());
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(counting.take(0));
    }
    EXPECT_FALSE(counting.take(0));

    Semaphore reentrant(1, 1, true);
    {
        CriticalSection outer(&reentrant);
        CriticalSection inner(&reentrant);
        std::atomic<bool> otherGotIt{false};
        std::thread other([&] { otherGotIt = reentrant.take(50); });
        other.join();
        EXPECT_FALSE(otherGotIt) << "another thread waits while the holder nests";
    }
    std::atomic<bool> otherGotIt{false};
    std::thread other([&] {
        otherGotIt = reentrant.take(1000);
        reentrant.give();
    });
    other.join();
    EXPECT_TRUE(otherGotIt) << "released after as many gives as takes";
}

TEST(Semaphore, WakesAWaitingThread) {
    Semaphore available(0, -1, false);
    std::atomic<int> taken{0};
    std::thread waiter([&] {
        available.take(-1);
        ++taken;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(taken, 0);
    available.give();
    waiter.join();
    EXPECT_EQ(taken, 1);
}

namespace {
class CountingBody : public Threadable {
public:
    void run() override { ++mRuns; }
    std::atomic<int> mRuns{0};
};
} // namespace

TEST(Threader, StartsWaitsAndSurvivesCopies) {
    CountingBody body;
    std::vector<Threader> threaders;
    std::vector<unsigned long> ids;
    for (int i = 0; i < 5; ++i) {
        threaders.push_back(Threader());
        ids.push_back(0);
        ASSERT_NE(threaders.back().start(&ids.back(), &body, "", 1, 0), 0);
        EXPECT_NE(ids.back(), 0u);
    }
    for (size_t i = 0; i < ids.size(); ++i) {
        EXPECT_TRUE(threaders[i].wait(ids[i]));
    }
    EXPECT_EQ(body.mRuns, 5);
    EXPECT_FALSE(Threader().wait(ids[0])) << "a thread can be waited for once";
    unsigned long id = 0;
    EXPECT_EQ(Threader().start(&id, nullptr, "x", 1, 0), 0);
}

TEST(Logging, CaptureSeesExactTextsAndLevels) {
    EXPECT_FALSE(loggingOnAppUni("AGPTestModule", 6)) << "detailed trace is off by default";
    {
        LogCapture capture(5);
        EXPECT_TRUE(loggingOnAppUni("AGPTestModule", 5));
        EXPECT_FALSE(loggingOnAppUni("AGPTestModule", 6));
        logAppUni("AGPTestModule", "./src/AGPTest.cpp", 5, 42, "Start parsing %d bytes of XML data\n", 17);
        logAppUni("AGPTestModule", "./src/AGPTest.cpp", 6, 43, "not captured");
        std::string longText(1000, 'x');
        logAppUni("AGPOther", "./src/AGPOther.cpp", 2, 1, "%s", longText.c_str());

        EXPECT_TRUE(capture.contains("AGPTestModule", 5, "Start parsing 17 bytes of XML data\n"));
        ASSERT_EQ(capture.texts("AGPTestModule").size(), 1u);
        ASSERT_EQ(capture.texts("AGPOther").size(), 1u);
        EXPECT_EQ(capture.texts("AGPOther")[0], longText);
        const LogEntry entry = capture.entries()[0];
        EXPECT_EQ(entry.sourcePath, "./src/AGPTest.cpp");
        EXPECT_EQ(entry.line, 42);
        EXPECT_FALSE(entry.time.empty());
    }
    EXPECT_FALSE(loggingOnAppUni("AGPTestModule", 5));
}

TEST(Translator, EnglishGermanAndUnknownKeys) {
    Translator translator("AGPPhonelet");
    EXPECT_EQ(translator.translate("command.exit"), "Exit");
    translator.setLanguage("de");
    EXPECT_EQ(translator.translate("command.exit"), "Beenden");
    EXPECT_EQ(translator.translate("no.such.key"), "no.such.key");
    const char* keys[] = {"xml.app.starting",
                          "xml.app.failed",
                          "xml.app.error.network",
                          "xml.app.error.parser",
                          "xml.app.error.display",
                          "xml.app.error.memory",
                          "xml.app",
                          "xml.app.error.details",
                          "xml.app.exit.hint",
                          "command.exit",
                          "command.cancel",
                          "command.select",
                          "selectionfield.options",
                          "list.options",
                          "alert.dismiss",
                          "alert.numberformat.title",
                          "alert.numberformat.msg"};
    for (const std::string language : {"en", "de"}) {
        translator.setLanguage(language);
        for (const char* key : keys) {
            EXPECT_NE(translator.translate(key), key) << language << " lacks " << key;
        }
    }
    TranslationInfo label("command.cancel", &translator);
    translator.setLanguage("en");
    EXPECT_EQ(label.getText(), "Cancel");
    translator.setLanguage("de-DE");
    EXPECT_EQ(label.getText(), "Abbrechen") << "labels follow a later language change";
    EXPECT_EQ(TranslationInfo("command.select").getText(), "Select");
}

TEST(GPALAdmin, EncodesAndDecodes) {
    std::string out;
    GPALAdmin::encodeUri("a b&c=d/é~_.-Z9", out, true, true);
    EXPECT_EQ(out, "a%20b%26c%3Dd%2F%C3%A9~_.-Z9");
    GPALAdmin::encodeUri("http://h/p?a=b c", out, false, false);
    EXPECT_EQ(out, "http://h/p?a=b+c");
    EXPECT_EQ(GPALAdmin::decodeUri("a%20b+c%2f%zz%4", out), 11);
    EXPECT_EQ(out, "a b c/%zz%4");
    GPALAdmin::decodeUri("%", out);
    EXPECT_EQ(out, "%");
}

TEST(ClientUtils, Conversions) {
    EXPECT_EQ(ClientUtils::itos(0), "0");
    EXPECT_EQ(ClientUtils::itos(-17), "-17");
    unsigned short value = 9;
    EXPECT_TRUE(ClientUtils::stringToUnsignedShort("5", value));
    EXPECT_EQ(value, 5);
    EXPECT_TRUE(ClientUtils::stringToUnsignedShort(" 65535 ", value));
    EXPECT_EQ(value, 65535);
    for (const char* bad : {"", "-1", "3x", "65536", "  "}) {
        EXPECT_FALSE(ClientUtils::stringToUnsignedShort(bad, value)) << bad;
        EXPECT_EQ(value, 0);
    }
}

TEST(EventLoop, RunsTasksInOrderDelayedAndCancelled) {
    EventLoop loop;
    std::mutex mutex;
    std::vector<std::string> order;
    auto record = [&](const std::string& what) {
        return [&, what] {
            std::lock_guard<std::mutex> lock(mutex);
            order.push_back(what);
        };
    };
    loop.postDelayed(std::chrono::milliseconds(30), record("late"));
    const EventLoop::TaskId cancelled = loop.postDelayed(std::chrono::milliseconds(10), record("cancelled"));
    loop.post(record("first"));
    loop.post(record("second"));
    EXPECT_TRUE(loop.cancel(cancelled));
    EXPECT_FALSE(loop.cancel(cancelled));
    bool onLoop = false;
    EXPECT_TRUE(loop.runAndWait([&] { onLoop = loop.isLoopThread(); }));
    EXPECT_TRUE(onLoop);
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    loop.drain();
    {
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_EQ(order, (std::vector<std::string>{"first", "second", "late"}));
    }
    loop.stop();
    EXPECT_EQ(loop.post(record("after stop")), 0u);
    EXPECT_FALSE(loop.runAndWait([] {}));
}

namespace {

// A worker like a message queue's thread: takes work from its unbounded semaphore until stopped.
class Worker : public Threadable {
public:
    explicit Worker(std::atomic<int>& done) : mDone(done) {}
    void run() override {
        while (mWork.take(-1) && !mStop) {
            mDone.fetch_add(1);
        }
    }
    void post() { mWork.give(); }
    void stop() {
        mStop = true;
        mWork.give();
    }

private:
    Semaphore mWork{0, -1, false};
    std::atomic<bool> mStop{false};
    std::atomic<int>& mDone;
};

} // namespace

// Work is posted from one thread while another asks whether everything settled: whenever the
// answer is yes, every piece of work posted before the question has been done.
TEST(ThreadActivity, SettledOnlyWhenEveryPostedPieceOfWorkIsDone) {
    std::atomic<int> done{0};
    std::atomic<int> posted{0};
    std::vector<std::unique_ptr<Worker>> workers;
    std::vector<unsigned long> ids(3);
    for (unsigned long& id : ids) {
        workers.push_back(std::make_unique<Worker>(done));
        ASSERT_EQ(Threader().start(&id, workers.back().get(), "worker", 1, 0), 1);
    }
    std::atomic<bool> posting{true};
    std::atomic<int> settledSeen{0};
    std::thread asker([&] {
        while (posting) {
            const int postedBefore = posted.load();
            if (ThreadActivity::allWaitingForWork()) {
                EXPECT_GE(done.load(), postedBefore);
                settledSeen.fetch_add(1);
            }
        }
    });
    for (int i = 0; i < 3000; ++i) {
        workers[static_cast<size_t>(i) % workers.size()]->post();
        posted.fetch_add(1);
        if (i % 100 == 0) {
            std::this_thread::yield();
        }
    }
    bool settled = false;
    for (int i = 0; i < 1000 && !settled; ++i) {
        settled = ThreadActivity::allWaitingForWork();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    posting = false;
    asker.join();
    EXPECT_TRUE(settled) << "the workers end up waiting for work";
    EXPECT_EQ(done.load(), 3000);
    for (size_t i = 0; i < workers.size(); ++i) {
        workers[i]->stop();
        EXPECT_TRUE(Threader().wait(ids[i]));
    }
    EXPECT_TRUE(ThreadActivity::allWaitingForWork()) << "ended threads no longer count";
}
