// Rules of the text box and alert elements that no key press reaches: size parsing and the alert's timers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AGPIppAlert.h"
#include "AGPIppCommand.h"
#include "AGPIppTextBox.h"
#include "AGPObjectMap.h"
#include "AGPPhoneletManager.h"
#include "display/Alert.h"
#include "display/TextBox.h"

namespace {

void set(AGPCommonBase& element, std::string name, std::string value) {
    element.addAttribute(name, value);
}

class ElementRules : public ::testing::Test {
protected:
    void TearDown() override {
        for (auto it = mOwned.rbegin(); it != mOwned.rend(); ++it) {
            delete *it;
        }
        AGPPhoneletManager::shutdownPhonelet();
    }
    AGPIppCommand* command(const char* type, const char* autoSeconds = nullptr,
                           const char* displayOn = nullptr) {
        auto* made = new AGPIppCommand();
        mOwned.push_back(made);
        set(*made, "Type", type);
        if (autoSeconds != nullptr) {
            set(*made, "Auto", autoSeconds);
        }
        if (displayOn != nullptr) {
            set(*made, "DisplayOn", displayOn);
        }
        made->initializeElement();
        return made;
    }
    AGPIppAlert* alert(const char* delay, const std::vector<AGPIppCommand*>& commands) {
        auto* made = new AGPIppAlert();
        mOwned.push_back(made);
        if (delay != nullptr) {
            set(*made, "Delay", delay);
        }
        made->initializeElement();
        for (AGPIppCommand* each : commands) {
            made->setCommandElement(*each);
        }
        made->processElement();
        return made;
    }

    std::vector<AGPCommonBase*> mOwned;
};

} // namespace

TEST_F(ElementRules, MaxSizeTakesOnlyAWholePositiveNumberUpToTheLimit) {
    EXPECT_EQ(AGPIppTextBox::parseAGPMaxSize("20"), 20u);
    for (const char* bad : {"20a", "0", "-5", "many", "", " 20", "000"}) {
        EXPECT_EQ(AGPIppTextBox::parseAGPMaxSize(bad), 1024u) << bad;
    }
    EXPECT_EQ(AGPIppTextBox::parseAGPMaxSize("9000"), 5120u);
    EXPECT_EQ(AGPIppTextBox::parseAGPMaxSize("99999999999999999999"), 5120u);
    EXPECT_EQ(AGPIppTextBox::parseAGPMaxSize("0050"), 50u);

    AGPIppTextBox box;
    set(box, "MaxSize", "3");
    set(box, "Default", "TEXT");
    box.initializeElement();
    box.processElement();
    EXPECT_EQ(box.getTextBox()->getMaxSize(), 3u);
    EXPECT_EQ(box.getConfirmedText(), "") << "TEXT without a Text child";
}

TEST_F(ElementRules, AlertDelayBecomesTheAutoOfItsOnlyVisibleCommand) {
    AGPIppCommand* early = command("SELECT", "2");
    alert("5000", {early});
    EXPECT_EQ(early->getAGPAuto(), 2u) << "an earlier Auto stays";

    AGPIppCommand* plain = command("SELECT");
    AGPIppAlert* single = alert("5000", {plain, command("UPDATE", "1", "NONE")});
    EXPECT_EQ(plain->getAGPAuto(), 5u);
    EXPECT_EQ(single->getDismissCommand(), nullptr);

    AGPIppCommand* first = command("SELECT");
    AGPIppCommand* second = command("UPDATE");
    AGPIppAlert* two = alert("5000", {first, second});
    EXPECT_EQ(first->getAGPAuto() + second->getAGPAuto(), 0u);
    EXPECT_EQ(two->getTimerCommand(), nullptr);

    AGPIppAlert* duplicates = alert(nullptr, {command("SELECT"), command("SELECT")});
    EXPECT_EQ(duplicates->getCommands().size(), 1u) << "equal commands are listed once";
}

TEST_F(ElementRules, AlertWithoutVisibleCommandMakesADismissCommand) {
    AGPIppAlert* quick = alert("500", {command("SELECT", nullptr, "NONE")});
    AGPIppCommand* dismiss = quick->getDismissCommand();
    ASSERT_NE(dismiss, nullptr);
    EXPECT_EQ(dismiss->getAGPType(), AGPIppCommand::BACK);
    EXPECT_EQ(dismiss->getAGPAuto(), 1u) << "half a second rounds up to one";
    EXPECT_EQ(dismiss->getLabelText(), "OK");
    EXPECT_EQ(quick->getTimerCommand(), dismiss);
    auto* widget = dynamic_cast<DisplayAPI::Alert*>(quick->getDisplayAPIDisplayable());
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->getCommands().size(), 1u);
    EXPECT_EQ(widget->getType(), DisplayAPI::ALERT_OTHER);

    const size_t before = AGPPhoneletManager::getAGPObjectMap()->size();
    AGPIppAlert* forever = alert("-3", {});
    ASSERT_NE(forever->getDismissCommand(), nullptr);
    EXPECT_EQ(forever->getDismissCommand()->getAGPAuto(), 0u);
    EXPECT_EQ(forever->getTimerCommand(), nullptr) << "a negative delay never closes the alert";

    delete mOwned.back();
    mOwned.pop_back();
    EXPECT_EQ(AGPPhoneletManager::getAGPObjectMap()->size(), before)
        << "the dismiss command goes with its alert";
}
