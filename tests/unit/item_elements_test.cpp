// Rules of choice groups, gauges, the player and selection items with a button that the end-to-end
// tests cannot reach directly: the player's state table, redisplay, cancel and timer steps.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "AGPIppChoiceGroup.h"
#include "AGPIppCommand.h"
#include "AGPIppGauge.h"
#include "AGPIppItem.h"
#include "AGPIppPlayer.h"
#include "AGPIppSpacer.h"
#include "AGPIppTicker.h"
#include "AGPMessage.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPXMLParser.h"
#include "display/ChoiceGroup.h"
#include "display/SelectionField.h"
#include "display/SliderItem.h"

namespace {

using Pairs = std::multimap<std::string, std::string>;

class ItemElements : public ::testing::Test {
protected:
    void SetUp() override { AGPObjectPool::initPool(); }
    void TearDown() override {
        if (mRoot != nullptr) {
            std::vector<AGPCommonBase*> tree;
            AGPCommonBase::createTreeExplorationVector(mRoot, tree);
            for (AGPCommonBase* element : tree) {
                delete element;
            }
        }
        AGPPhoneletManager::shutdownPhonelet();
    }

    // Parses `xml` and runs the life cycle as the GUI handler does: children before parents.
    AGPCommonBase* build(std::string xml) {
        AGPXMLParser parser;
        EXPECT_TRUE(parser.parseXMLData(xml, mRoot)) << xml;
        if (mRoot == nullptr) {
            return nullptr;
        }
        AGPCommonBase::createTreeExplorationVector(mRoot, mTree);
        for (AGPCommonBase* element : mTree) {
            element->initializeElement();
        }
        for (AGPCommonBase* element : mTree) {
            element->processElement();
        }
        return mRoot;
    }
    void hideAndShowAgain() {
        for (AGPCommonBase* element : mTree) {
            element->hideElement();
        }
        for (AGPCommonBase* element : mTree) {
            element->reDisplayElement();
        }
        for (AGPCommonBase* element : mTree) {
            element->reDisplayElement2ndRound();
        }
    }
    template <typename Element> Element* first(AGPObjectTypeInfo::AGPObjectType type) {
        for (AGPCommonBase* element : mTree) {
            if (element->getAGPObjectType() == type) {
                return static_cast<Element*>(element);
            }
        }
        return nullptr;
    }

    AGPCommonBase* mRoot = nullptr;
    std::vector<AGPCommonBase*> mTree;
};

std::string option(const std::string& value, bool selected) {
    return "<Option Key=\"k\" Value=\"" + value + "\"" + (selected ? " Selected=\"TRUE\"" : "") +
           "><OptionText>" + value + "</OptionText></Option>";
}

TEST_F(ItemElements, PlayerStateFollowsModeStateAndTheAutomaticGauge) {
    struct Row {
        const char* mode;
        const char* state;
        bool automatic;
        int widgetState;
        int widgetMode;
        bool drives;
    };
    const Row rows[] = {
        {"CALL", "PLAYING", true, 0, 0, true},     {"CALL", "PLAYING", false, 2, 0, false},
        {"CALL", "RECORDING", true, 2, 0, false},  {"CALL", "STOPPED", false, 2, 0, false},
        {"CALL", "STOPPED", true, 3, 0, false},    {"RECORD", "PLAYING", true, 0, 1, true},
        {"RECORD", "RECORDING", true, 4, 1, true}, {"RECORD", "RECORDING", false, 2, 1, false},
        {"RECORD", "STOPPED", true, 3, 1, false},  {"", "PLAYING", true, 1, 0, true},
        {"RECORD", "", false, 1, 0, false},
    };
    for (const Row& row : rows) {
        AGPIppPlayer player;
        std::string name = "Mode";
        std::string value = row.mode;
        EXPECT_EQ(player.addAttribute(name, value), *row.mode != '\0');
        name = "State";
        value = row.state;
        EXPECT_EQ(player.addAttribute(name, value), *row.state != '\0');
        AGPIppGauge* gauge = new AGPIppGauge();
        name = "Interactive";
        value = row.automatic ? "AUTO" : "YES";
        gauge->addAttribute(name, value);
        ASSERT_TRUE(player.addChild(*gauge));
        gauge->setParent(&player);
        DisplayAPI::PopupPlayerState state;
        DisplayAPI::PopupPlayerMode mode;
        AGPIppGauge::AGPInteractive interactive;
        const bool drives = player.getFromXMLStateAndModeAndInteractive(state, mode, interactive);
        const std::string where = std::string(row.mode) + "/" + row.state + (row.automatic ? " auto" : "");
        EXPECT_EQ(state, row.widgetState) << where;
        EXPECT_EQ(mode, row.widgetMode) << where;
        EXPECT_EQ(drives, row.drives) << where;
        EXPECT_EQ(interactive == AGPIppGauge::AUTO, row.drives) << where;
        player.removeChild(gauge);
        delete gauge;
    }
}

TEST_F(ItemElements, CheckBoxesKeepUserTicksAcrossRedisplayAndCancelRestoresTheDocument) {
    build("<IppChoiceGroup Type=\"MULTIPLE\" Count=\"3\">" + option("a", true) + option("b", false) +
          option("c", true) + "</IppChoiceGroup>");
    auto* group = static_cast<AGPIppChoiceGroup*>(mRoot);
    auto* widget = static_cast<DisplayAPI::ChoiceGroup*>(group->getDisplayItem());
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->getLabel(), "ChoiceGroup");
    Pairs pairs;
    group->gatherKeyValues(pairs);
    EXPECT_EQ(pairs, Pairs({{"k", "a"}, {"k", "not_b"}, {"k", "c"}}));

    widget->setSelectedIndex(0, false);
    widget->setSelectedIndex(1, true);
    hideAndShowAgain();
    widget = static_cast<DisplayAPI::ChoiceGroup*>(group->getDisplayItem());
    ASSERT_NE(widget, nullptr);
    EXPECT_FALSE(widget->isSelected(0)) << "an option the user unticked stays unticked";
    EXPECT_TRUE(widget->isSelected(1));
    EXPECT_TRUE(widget->isSelected(2));

    group->performCancel();
    EXPECT_TRUE(widget->isSelected(0));
    EXPECT_FALSE(widget->isSelected(1));
}

TEST_F(ItemElements, PopupOpensOnTheFirstSelectedOptionAndCancelGoesBack) {
    build("<IppChoiceGroup Type=\"POPUP\" Count=\"3\"><Label>Drink</Label>" + option("tea", false) +
          option("coffee", true) + option("juice", true) + "</IppChoiceGroup>");
    auto* group = static_cast<AGPIppChoiceGroup*>(mRoot);
    auto* field = static_cast<DisplayAPI::SelectionField*>(group->getDisplayItem());
    ASSERT_NE(field, nullptr) << "made without a form";
    EXPECT_EQ(field->getLabel(), "Drink");
    EXPECT_EQ(field->getSelectionIndex(), 1);
    field->setSelectionIndex(2);
    Pairs pairs;
    group->gatherKeyValues(pairs);
    EXPECT_EQ(pairs, Pairs({{"k", "juice"}}));
    group->performCancel();
    EXPECT_EQ(field->getSelectionIndex(), 1);
}

TEST_F(ItemElements, AutomaticGaugeStepsToItsMaximumThenStopsAndSendsNothing) {
    build(
        "<IppGauge Key=\"pos\" Interactive=\"AUTO\"><Maximum>0:05</Maximum><Initial>3</Initial></IppGauge>");
    auto* gauge = static_cast<AGPIppGauge*>(mRoot);
    gauge->initTimer();
    gauge->startTimer();
    ASSERT_NE(gauge->getTimerCommand(), nullptr);
    AGPMessage tick(AGPMessage::Command_Timer, "");
    for (int i = 0; i < 2; ++i) {
        tick.command = gauge->getTimerCommand();
        gauge->processMessage(tick);
    }
    EXPECT_EQ(gauge->getValue(), 5);
    EXPECT_EQ(gauge->getTimer(), nullptr) << "stopped at the maximum";
    gauge->initTimer();
    EXPECT_EQ(gauge->getTimer(), nullptr) << "a gauge whose timer ran is not started again";
    auto* slider = static_cast<DisplayAPI::SliderItem*>(gauge->getDisplayItem());
    EXPECT_EQ(slider->getValue(), "5");
    Pairs pairs;
    gauge->gatherKeyValues(pairs);
    EXPECT_TRUE(pairs.empty());
}

TEST_F(ItemElements, ForeignTimerMessagesStopTheGaugeAndCancelReadsTheInitialValue) {
    build("<IppGauge Key=\"v\" Interactive=\"AUTO\"><Maximum>9</Maximum><Initial>12</Initial></IppGauge>");
    auto* gauge = static_cast<AGPIppGauge*>(mRoot);
    EXPECT_EQ(gauge->getValue(), 9) << "an Initial beyond the maximum gives the maximum";
    gauge->initTimer();
    AGPMessage foreign(AGPMessage::Command_Timer, "");
    gauge->processMessage(foreign);
    EXPECT_EQ(gauge->getTimer(), nullptr);
    EXPECT_EQ(gauge->getValue(), 9);
    auto* slider = static_cast<DisplayAPI::SliderItem*>(gauge->getDisplayItem());
    slider->setValue("4");
    gauge->performCancel();
    EXPECT_EQ(slider->getValue(), "9");
}

TEST_F(ItemElements, SelectionItemOffersItsButtonsPairAsTheFirstCommand) {
    build(
        "<IppItem CommandCount=\"1\"><IppButton Key=\"k\" Value=\"v\"><Label>Go</Label></IppButton>"
        "<IppCommand Type=\"SELECT\" DisplayOn=\"LISTITEM\" Priority=\"3\"><Label>Other</Label></IppCommand>"
        "</IppItem>");
    auto* item = static_cast<AGPIppItem*>(mRoot);
    const std::vector<AGPIppCommand*> commands = item->getContextMenuCommands();
    ASSERT_EQ(commands.size(), 2u);
    EXPECT_EQ(commands[0]->getAGPType(), AGPIppCommand::UPDATE);
    EXPECT_EQ(commands[0]->getMessageType(), AGPMessage::Command_Update);
    EXPECT_EQ(commands[0]->getParent(), item) << "a child, freed with the tree";
    EXPECT_EQ(item->getAGPCommandCount(), 2u);
    Pairs pairs;
    commands[0]->gatherKeyValues(pairs);
    EXPECT_EQ(pairs, Pairs({{"k", "v"}}));
}

TEST_F(ItemElements, SpacerAndTickerValidityAndWidgets) {
    AGPIppSpacer spacer;
    std::string name = "NewLine";
    std::string value = "NEWLINE_BEFORE";
    EXPECT_TRUE(spacer.addAttribute(name, value));
    name = "Height";
    value = "-20";
    EXPECT_TRUE(spacer.addAttribute(name, value));
    EXPECT_EQ(spacer.getAGPHeight(), 0u);
    EXPECT_TRUE(spacer.isValid());
    name = "NewLine";
    value = "SIDEWAYS";
    EXPECT_FALSE(spacer.addAttribute(name, value));
    EXPECT_FALSE(spacer.isValid());

    build("<IppTicker><Text></Text></IppTicker>");
    EXPECT_EQ(static_cast<AGPIppTicker*>(mRoot)->getTicker(), nullptr) << "an empty text makes no ticker";
}

} // namespace
