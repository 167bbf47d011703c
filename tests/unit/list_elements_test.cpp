// Tests of the list, option and option-text elements where the display cannot show the result.
#include <gtest/gtest.h>

#include <map>

#include "AGPIppList.h"
#include "AGPObjectPool.h"
#include "AGPOption.h"
#include "AGPOptionText.h"
#include "AGPPhoneletManager.h"
#include "display/Displayable.h"
#include "display/ListItem.h"

namespace {

bool set(AGPCommonBase& element, std::string name, std::string value) {
    return element.addAttribute(name, value);
}

class ListElements : public ::testing::Test {
protected:
    void SetUp() override { AGPObjectPool::initPool(); }
    void TearDown() override {
        for (AGPCommonBase* element : mOwned) {
            delete element;
        }
        AGPPhoneletManager::shutdownPhonelet();
    }

    AGPOptionText* optionText(AGPOption& parent, std::string content, bool gray = false) {
        auto* text = new AGPOptionText();
        mOwned.push_back(text);
        text->addContent(content);
        if (gray) {
            set(*text, "State", "GRAY");
        }
        if (parent.addChild(*text)) {
            text->setParent(&parent);
        }
        return text;
    }

    AGPOption* option(AGPIppList& list, std::vector<std::string> texts) {
        auto* made = new AGPOption();
        // Options go first so that their rows are freed before the list's widget.
        mOwned.insert(mOwned.begin(), made);
        EXPECT_TRUE(set(*made, "Key", "k"));
        EXPECT_TRUE(set(*made, "Value", "v"));
        EXPECT_TRUE(set(*made, "Selected", "FALSE"));
        for (const std::string& text : texts) {
            optionText(*made, text);
        }
        list.addChild(*made);
        made->setParent(&list);
        return made;
    }

    std::vector<AGPCommonBase*> mOwned;
};

TEST_F(ListElements, ThreeColumnEntriesArePaddedAndCutToThreeTexts) {
    AGPIppList list;
    set(list, "Columns", "3");
    AGPOption* one = option(list, {"A"});
    AGPOption* two = option(list, {"A", "B"});
    AGPOption* four = option(list, {"A", "B", "C", "D"});
    for (AGPOption* each : {one, two, four}) {
        each->initializeElement();
    }
    EXPECT_EQ(one->getListItem()->getText(), "A||");
    EXPECT_EQ(two->getListItem()->getText(), "A|B|");
    EXPECT_EQ(four->getListItem()->getText(), "A|B|C") << "a fourth text is refused";
    EXPECT_EQ(four->getContent(), "A|B|C");

    AGPIppList single;
    AGPOption* plain = option(single, {"A", "B"});
    plain->initializeElement();
    EXPECT_EQ(plain->getListItem()->getText(), "A") << "one column shows the first text only";
}

TEST_F(ListElements, AttributesParseAsDocumentedAndOptionsNeedTheirThreeAttributes) {
    AGPIppList list;
    EXPECT_TRUE(set(list, "Count", "-4"));
    EXPECT_EQ(list.getAGPCount(), 0u);
    EXPECT_TRUE(set(list, "Count", "7"));
    EXPECT_EQ(list.getAGPCount(), 7u);
    set(list, "Type", "exclusive");
    EXPECT_EQ(list.getAGPType(), AGPIppList::PLAIN) << "values are case-sensitive";
    set(list, "Type", "MULTIPLE");
    EXPECT_EQ(list.getAGPType(), AGPIppList::MULTIPLE);
    set(list, "Columns", "2");
    EXPECT_EQ(list.getAGPColumns(), AGPIppList::COLUMNS_1);
    EXPECT_TRUE(set(list, "FColor", "red"));
    EXPECT_FALSE(set(list, "Colour", "red"));

    AGPOption incomplete;
    EXPECT_FALSE(set(incomplete, "Selected", "yes"));
    EXPECT_EQ(incomplete.getAGPSelected(), AGPOption::SELECTED_NOT_GIVEN);
    set(incomplete, "Key", "k");
    optionText(incomplete, "T");
    EXPECT_FALSE(incomplete.isValid()) << "no Value, no Selected";
    EXPECT_TRUE(set(incomplete, "Value", ""));
    EXPECT_TRUE(set(incomplete, "Selected", "TRUE"));
    EXPECT_TRUE(incomplete.isValid());
    EXPECT_EQ(incomplete.getOptionText(), "T");
    std::multimap<std::string, std::string> pairs;
    incomplete.gatherKeyValues(pairs);
    EXPECT_EQ(pairs, (std::multimap<std::string, std::string>{{"k", ""}}));

    AGPOption bare;
    EXPECT_FALSE(bare.isValid()) << "at least one option text";
    EXPECT_EQ(bare.getOptionText(), "no text");
    bare.gatherKeyValues(pairs);
    EXPECT_EQ(pairs.count("null"), 1u) << "the default key";
}

TEST_F(ListElements, GreyTextGreysTheRowAndSurplusRowsAreFreed) {
    AGPIppList list;
    set(list, "Count", "1");
    AGPOption* shown = option(list, {"A"});
    optionText(*shown, "B", true);
    AGPOption* surplus = option(list, {"C"});
    shown->initializeElement();
    surplus->initializeElement();
    EXPECT_FALSE(shown->isGray()) << "only the texts shown count";
    list.initializeElement();
    ASSERT_NE(list.getDisplayAPIDisplayable(), nullptr);
    list.processElement();
    EXPECT_EQ(list.getDisplayAPIDisplayable()->kind(), std::string("list"));
    // The surplus option's row never reaches the widget: hiding frees it (the leak checker
    // watches), while the shown row belongs to the widget.
    surplus->hideElement();
    shown->hideElement();
    EXPECT_EQ(surplus->getListItem(), nullptr);
    list.hideElement();
    EXPECT_NE(list.getDisplayAPIDisplayable(), nullptr) << "without a GUI handler the widgets stay";
}

} // namespace
