// Tests of the widget library's lifetimes, timers, tab screens, keypad and threads.
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "DisplayTestKit.h"
#include "TestPictures.h"
#include "display/Form.h"
#include "display/Image.h"
#include "display/List.h"
#include "display/ListItem.h"
#include "display/MenuCommand.h"
#include "display/TabScreen.h"
#include "display/TextBox.h"
#include "display/TextField.h"
#include "display/Ticker.h"
#include "display/Timer.h"

using namespace DisplayAPI;

namespace {

// Holds the event loop until released, so that keys pressed meanwhile stay queued.
class LoopGate {
public:
    explicit LoopGate(EventLoop& loop) {
        std::shared_future<void> opened = mOpen.get_future().share();
        loop.post([opened] { opened.wait(); });
    }
    ~LoopGate() { open(); }
    void open() {
        if (!mOpened) {
            mOpened = true;
            mOpen.set_value();
        }
    }

private:
    std::promise<void> mOpen;
    bool mOpened = false;
};

} // namespace

TEST_F(DisplayTest, DeletingCommandsTickersAndPicturesDetachesThemEverywhere) {
    List list(1);
    list.addCommandListener(&recorder);
    auto select = std::make_unique<MenuCommand>("Select", 35);
    Command exitCommand("Exit", Command::EXIT);
    list.addCommand(select.get());
    list.addCommand(&exitCommand);
    auto ticker = std::make_unique<Ticker>("");
    ticker->setText("News");
    list.setTicker(ticker.get());
    const std::string pictureBytes = TestPictures::png(4, 2);
    auto picture = std::make_unique<Image>(pictureBytes.data(), int(pictureBytes.size()));
    auto* row = new ListItem();
    row->setText("With picture");
    row->setImage(picture.get());
    list.append(row);
    display->setCurrent(&list);

    auto shot = snap();
    EXPECT_EQ(shot["softKeys"][0], "Select");
    EXPECT_EQ(shot["screen"]["ticker"], "News");
    EXPECT_EQ(shot["screen"]["rows"][0]["image"]["kind"], "png");

    EXPECT_TRUE(Command::exists(select.get()));
    Command* dead = select.get();
    select.reset();
    ticker.reset();
    picture.reset();
    EXPECT_FALSE(Command::exists(dead));
    shot = snap();
    EXPECT_EQ(shot["softKeys"][0], "Exit") << "the deleted command left the soft keys";
    EXPECT_TRUE(shot["screen"]["ticker"].is_null());
    EXPECT_EQ(shot["screen"]["rows"][0]["image"]["width"], 4) << "a shown picture outlives its Image";

    // A command deleted after its key was pressed but before delivery is dropped.
    auto late = std::make_unique<Command>("Late", Command::OK);
    list.removeCommand(&exitCommand);
    list.addCommand(late.get());
    {
        LoopGate gate(loop);
        display->pressKey(Key::SoftKey1);
        late.reset();
        gate.open();
    }
    display->waitUntilSettled();
    EXPECT_TRUE(recorder.calls().empty());

    // Deleting a row takes it out of its list; deleting the list deletes the remaining rows.
    delete row;
    EXPECT_EQ(list.size(), 0);
}

TEST_F(DisplayTest, DeletingADisplayableTakesItOffTheDisplayAndOutOfItsTabAndDropsItsCallbacks) {
    auto form = std::make_unique<Form>();
    form->addCommandListener(&recorder);
    auto* field = new TextField(nullptr, 0, nullptr, TextField::ANY, false);
    form->append(field);
    auto* second = new TextField(nullptr, 0, nullptr, TextField::ANY, false);
    form->append(second);
    delete second;
    EXPECT_EQ(form->size(), 1) << "an item deleted on its own leaves the form";
    display->setCurrent(form.get());
    {
        LoopGate gate(loop);
        display->pressKey(Key::Back);
        form.reset();
        gate.open();
    }
    display->waitUntilSettled();
    EXPECT_TRUE(recorder.calls().empty()) << "the command of a deleted widget is not delivered";
    EXPECT_EQ(display->getCurrent(), nullptr);
    EXPECT_TRUE(snap()["screen"].is_null());
    EXPECT_FALSE(display->pressKey(Key::Ok));

    TabScreen tabs(0, 1);
    auto first = std::make_unique<List>(1);
    tabs.addTab("One", first.get(), nullptr);
    display->setCurrent(&tabs);
    first.reset();
    EXPECT_EQ(tabs.numberOfTabs(), 1) << "the tab stays, empty";
    EXPECT_EQ(tabs.getDisplayableForTabAtIndex(0), nullptr);
    const auto shot = snap();
    EXPECT_EQ(shot["tabBar"]["labels"], nlohmann::json({"One"}));
    EXPECT_TRUE(shot["screen"].is_null());
}

TEST_F(DisplayTest, TabScreenKeysReportTheTabBarAndLeaveTheSwitchingToTheApplication) {
    TabScreen tabs(0, 1);
    tabs.addCommandListener(&recorder);
    List mail(1), calls(1);
    mail.addCommandListener(&recorder);
    mail.append("message");
    calls.append("call");
    mail.setUsedWithTab(true, &tabs);
    calls.setUsedWithTab(true, &tabs);
    tabs.addTab("Mail", &mail, nullptr);
    tabs.addTab("Calls", &calls, nullptr);
    display->setCurrent(&tabs);
    EXPECT_TRUE(display->isCurrentForKeyEvents(&mail));

    press({Key::Up});
    EXPECT_TRUE(tabs.isTabBarActive());
    EXPECT_FALSE(display->isCurrentForKeyEvents(&mail));
    press({Key::Right, Key::Left});
    EXPECT_EQ(tabs.getCurrentTabIndex(), 0) << "the library only reports; the application switches";
    tabs.nextTab();
    press({Key::Down});
    EXPECT_FALSE(tabs.isTabBarActive());
    const auto delivered = recorder.calls();
    ASSERT_EQ(delivered.size(), 4u);
    EXPECT_EQ(recorder.types(), (std::vector<int>{Command::TABBAR_ACTIVE, Command::TAB_FORWARD,
                                                  Command::TAB_BACK, Command::TABBAR_INACTIVE}));
    EXPECT_EQ(delivered[0].displayable, &mail) << "entering the bar names the widget it came from";
    for (size_t i = 1; i < delivered.size(); ++i) {
        EXPECT_EQ(delivered[i].displayable, &tabs);
    }
    EXPECT_TRUE(display->isCurrentForKeyEvents(&calls));
    const auto shot = snap();
    EXPECT_EQ(shot["tabBar"]["labels"], nlohmann::json({"Mail", "Calls"}));
    EXPECT_EQ(shot["tabBar"]["current"], 1);
    EXPECT_EQ(shot["screen"]["rows"][0]["columns"][0], "call");

    tabs.removeTabAtIndex(0);
    EXPECT_EQ(tabs.currentTab(), &calls) << "tabs above move down";
    tabs.leaveTabBarUpwards();
    EXPECT_EQ(snap()["tabBar"]["leftUpwards"], true);
}

TEST_F(DisplayTest, TimersExpireOnceOnTheEventThreadAndStopRestartAndDeleteSafely) {
    Command timerCommand("Command Timer", Command::TIMER);
    timerCommand.setOwnerId(42);
    auto timer = std::make_unique<Timer>(5);
    timer->addCommandListener(&recorder);
    timer->addCommand(&timerCommand);
    timer->enableSingleShot(true);
    ASSERT_TRUE(timer->start(5));

    // A marker timer due later: the loop runs due tasks in order, so once it has fired, every
    // earlier expiry has run too.
    auto waitPast = [&](unsigned milliseconds) {
        std::promise<void> fired;
        loop.postDelayed(std::chrono::milliseconds(milliseconds), [&fired] { fired.set_value(); });
        fired.get_future().wait();
        display->waitUntilSettled();
    };
    waitPast(30);
    auto delivered = recorder.calls();
    ASSERT_EQ(delivered.size(), 1u) << "single shot: one expiry per start";
    EXPECT_EQ(delivered[0].command, &timerCommand);
    EXPECT_EQ(delivered[0].displayable, nullptr);
    EXPECT_TRUE(delivered[0].onLoopThread);
    EXPECT_FALSE(timer->isRunning());

    timer->start(5);
    timer->stop();
    timer->start(20);
    timer->start(5); // a restart replaces the pending expiry
    waitPast(40);
    EXPECT_EQ(recorder.calls().size(), 2u);

    timer->start(5);
    timer.reset(); // deleting a running timer cancels it
    auto repeating = std::make_unique<Timer>(2);
    repeating->addCommandListener(&recorder);
    const auto before = recorder.calls().size();
    repeating->start();
    // However slow the machine, a repeating timer gets there; the bound only stops a broken one.
    for (int wait = 0; wait < 5000 && recorder.calls().size() < before + 3; ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    repeating->stop();
    display->waitUntilSettled();
    const auto count = recorder.calls().size();
    EXPECT_GE(count, before + 3) << "a repeating timer keeps firing";
    EXPECT_EQ(recorder.calls().back().type, Command::TIMER) << "without a command it reports the timer type";
    waitPast(10);
    EXPECT_EQ(recorder.calls().size(), count) << "nothing after stop";

    auto orphan = std::make_unique<Command>("orphan", Command::TIMER);
    Timer lost(1);
    lost.addCommandListener(&recorder);
    lost.addCommand(orphan.get());
    lost.start();
    orphan.reset();
    waitPast(10);
    EXPECT_EQ(recorder.calls().size(), count) << "a deleted command never expires";
}

TEST_F(DisplayTest, KeypadDigitsReachTheObserverOnlyWhileSendingIsOffAndChangesAreAnnounced) {
    std::mutex mutex;
    std::vector<int> codes;
    std::atomic<int> notices{0};
    display->setKeypadObserver([&](int code) {
        std::lock_guard<std::mutex> lock(mutex);
        codes.push_back(code);
    });
    display->setChangeListener([&] { ++notices; });
    List list(1);
    list.append("row");
    TextBox box(false);
    display->setCurrent(&list);
    press({Key::Digit3});
    display->setKeypadEventSending(false);
    EXPECT_FALSE(snap()["keypad"]["sending"]);
    press({Key::Digit7, Key::Star, Key::Hash, Key::Digit0});
    display->setCurrent(&box);
    press({Key::Digit5}); // typed into the box, not a keypad event
    {
        std::lock_guard<std::mutex> lock(mutex);
        EXPECT_EQ(codes, (std::vector<int>{7, 10, 11, 0}));
    }
    EXPECT_EQ(box.getText(), "5");
    EXPECT_GE(notices.load(), 1);
    const auto before = display->revision();
    box.setTitle("Note");
    EXPECT_GT(display->revision(), before);

    display->hide();
    EXPECT_FALSE(display->pressKey(Key::Digit1)) << "a hidden display takes no keys";
    EXPECT_FALSE(snap()["shown"]);
    // The observers refer to this test's locals.
    display->setChangeListener(nullptr);
    display->setKeypadObserver(nullptr);
    display->waitUntilSettled();
}

TEST_F(DisplayTest, WidgetsAreBuiltChangedAndDeletedFromSeveralThreadsWhileTheHostPressesKeys) {
    std::atomic<bool> stop{false};
    TabScreen tabs(0, 1);
    tabs.addTab("A", nullptr, nullptr);
    tabs.addTab("B", nullptr, nullptr);
    display->setCurrent(&tabs);
    auto builder = [&](int tab) {
        MenuCommand select("Select", 35);
        for (int round = 0; round < 150 && !stop; ++round) {
            auto form = std::make_unique<Form>();
            form->addCommandListener(&recorder);
            form->addItemStateListener(&recorder);
            form->addCommand(&select);
            for (int i = 0; i < 4; ++i) {
                auto* field = new TextField(nullptr, 0, nullptr, TextField::ANY, false);
                field->setString("value " + std::to_string(i));
                form->append(field);
            }
            form->setUsedWithTab(true, &tabs);
            tabs.setCurrentDisplayableForTabAtIndex(tab, form.get());
            if (round % 3 == 0) {
                tabs.setCurrentTabIndex(tab);
            }
            Timer timer(1);
            timer.addCommandListener(&recorder);
            timer.enableSingleShot(true);
            timer.start();
        }
    };
    std::thread first(builder, 0);
    std::thread second(builder, 1);
    const Key keys[] = {Key::Down,     Key::Ok, Key::Digit4, Key::Ok,
                        Key::SoftKey1, Key::Up, Key::Down,   Key::Back};
    for (int i = 0; i < 400; ++i) {
        display->pressKey(keys[i % 8]);
        display->typeText("x");
        (void)display->snapshot().dump();
    }
    stop = true;
    first.join();
    second.join();
    display->waitUntilSettled();
    for (const auto& call : recorder.calls()) {
        EXPECT_TRUE(call.onLoopThread);
    }
    EXPECT_EQ(tabs.getDisplayableForTabAtIndex(0), nullptr) << "the forms of both threads are gone";
}

namespace {

// Stops inside commandAction until released, then reads everything it was given.
class BlockingListener : public CommandListener {
public:
    void commandAction(Command* command, Displayable* displayable) override {
        mEntered.set_value();
        mRelease.get_future().wait();
        mLabel = command->getBasicText();
        mOwner = displayable->getOwnerId();
        mReturned = true;
    }
    std::promise<void> mEntered;
    std::promise<void> mRelease;
    std::string mLabel;
    unsigned long mOwner = 0;
    std::atomic<bool> mReturned{false};
};

} // namespace

TEST_F(DisplayTest, DeletingAWidgetOrCommandWaitsForTheListenerThatIsToldAboutIt) {
    BlockingListener listener;
    auto* form = new Form();
    form->setOwnerId(42);
    auto* ok = new Command("Go", Command::OK);
    form->addCommand(ok);
    form->addCommandListener(&listener);
    display->setCurrent(form);
    display->pressKey(Key::SoftKey1);
    listener.mEntered.get_future().wait();

    // Another thread deletes both while the listener holds them; it must wait for the listener.
    std::atomic<bool> deleted{false};
    std::thread deleter([&] {
        delete ok;
        delete form;
        deleted = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // give a wrong delete its chance
    EXPECT_FALSE(deleted) << "the delete went ahead while the listener ran";
    listener.mRelease.set_value();
    deleter.join();
    EXPECT_TRUE(listener.mReturned);
    EXPECT_EQ(listener.mLabel, "Go");
    EXPECT_EQ(listener.mOwner, 42U);
    EXPECT_EQ(display->getCurrent(), nullptr);
}
