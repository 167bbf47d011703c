// Shared fixture of the widget-library tests: an event loop, a display and recording listeners.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "display/Command.h"
#include "display/CommandListener.h"
#include "display/Display.h"
#include "display/Item.h"
#include "display/ItemStateListener.h"
#include "events/EventLoop.h"

// Records every callback with what it carried, and the thread it ran on.
class Recorder : public DisplayAPI::CommandListener, public DisplayAPI::ItemStateListener {
public:
    struct Call {
        DisplayAPI::Command* command;
        int type;
        DisplayAPI::Displayable* displayable;
        std::string label;
        bool onLoopThread;
    };

    explicit Recorder(EventLoop& loop) : mLoop(loop) {}

    void commandAction(DisplayAPI::Command* command, DisplayAPI::Displayable* displayable) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.push_back(
            Call{command, command->getType(), displayable, command->getBasicText(), mLoop.isLoopThread()});
    }
    void itemStateChanged(DisplayAPI::Item* item) override {
        std::lock_guard<std::mutex> lock(mMutex);
        mItems.push_back(item);
    }
    std::vector<Call> calls() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCalls;
    }
    std::vector<DisplayAPI::Item*> items() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mItems;
    }
    void clear() {
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.clear();
        mItems.clear();
    }
    std::vector<int> types() {
        std::vector<int> result;
        for (const auto& call : calls()) {
            result.push_back(call.type);
        }
        return result;
    }

private:
    EventLoop& mLoop;
    std::mutex mMutex;
    std::vector<Call> mCalls;
    std::vector<DisplayAPI::Item*> mItems;
};

class DisplayTest : public ::testing::Test {
protected:
    void makeDisplay(bool softKeyBar) {
        DisplayAPI::DisplayModel model;
        model.name = softKeyBar ? "with soft keys" : "without soft keys";
        model.softKeyBar = softKeyBar;
        display = std::make_unique<DisplayAPI::Display>(loop, model);
        display->show();
    }
    void SetUp() override { makeDisplay(true); }
    void TearDown() override { display->waitUntilSettled(); }

    void press(std::initializer_list<DisplayAPI::Key> keys) {
        for (DisplayAPI::Key key : keys) {
            display->pressKey(key);
        }
        display->waitUntilSettled();
    }
    nlohmann::json snap() {
        display->waitUntilSettled();
        return display->snapshot();
    }

    EventLoop loop;
    Recorder recorder{loop};
    std::unique_ptr<DisplayAPI::Display> display;
};
