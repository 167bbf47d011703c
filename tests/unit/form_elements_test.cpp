// Tests of the form, text field and selection item rules that the display cannot show.
#include <gtest/gtest.h>

#include <map>

#include "AGPIppForm.h"
#include "AGPIppItem.h"
#include "AGPIppTextField.h"
#include "AGPMessage.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPText.h"
#include "AGPTitle.h"
#include "display/Form.h"
#include "display/TextField.h"

namespace {

bool set(AGPCommonBase& element, std::string name, std::string value) {
    return element.addAttribute(name, value);
}

class FormElements : public ::testing::Test {
protected:
    void SetUp() override { AGPObjectPool::initPool(); }
    // Children go first, as a document tree is freed: the form widget takes the appended fields.
    void TearDown() override {
        for (AGPCommonBase* element : mOwned) {
            delete element;
        }
        delete mForm;
        AGPPhoneletManager::shutdownPhonelet();
    }

    template <typename Element> Element* child(AGPCommonBase& parent) {
        auto* made = new Element();
        mOwned.insert(mOwned.begin(), made);
        EXPECT_TRUE(parent.addChild(*made));
        made->setParent(&parent);
        return made;
    }

    AGPIppTextField* field(AGPCommonBase& parent, const std::string& key,
                           const std::string& constraint = "") {
        auto* made = child<AGPIppTextField>(parent);
        set(*made, "Key", key);
        if (!constraint.empty()) {
            set(*made, "Constraint", constraint);
        }
        return made;
    }

    // Widgets first, then the form fills its own, as the GUI handler runs the life cycle.
    void build() {
        for (AGPCommonBase* element : mOwned) {
            element->initializeElement();
        }
        mForm->initializeElement();
        for (AGPCommonBase* element : mOwned) {
            element->processElement();
        }
        mForm->processElement();
    }

    AGPIppForm* mForm = new AGPIppForm();
    std::vector<AGPCommonBase*> mOwned;
};

TEST_F(FormElements, AttributesFallBackAsDocumented) {
    EXPECT_EQ(AGPIppForm::parseAGPProportion("60_40"), AGPIppForm::PROPORTION_60_40);
    EXPECT_EQ(AGPIppForm::parseAGPProportion("60-40"), AGPIppForm::PROPORTION_DEFAULT);
    EXPECT_EQ(AGPIppForm::parseAGPItemCount("-2"), 0u);
    EXPECT_EQ(AGPIppForm::parseAGPItemCount("x"), 0u);
    EXPECT_FALSE(set(*mForm, "Count", "2"));
    AGPIppTextField text;
    EXPECT_FALSE(set(text, "MaxSize", "-3"));
    EXPECT_EQ(text.getAGPMaxSize(), AGPIppTextField::MAXSIZE_NONE);
    EXPECT_FALSE(set(text, "Default", "PARSE_FAILED"));
    EXPECT_TRUE(set(text, "Default", "TEXT"));
    EXPECT_EQ(AGPIppItem::parseAGPCommandCount("-1"), 0u);
    EXPECT_FALSE(set(text, "Key", "PARSE_FAILED"));
    std::multimap<std::string, std::string> pairs;
    text.gatherKeyValues(pairs);
    EXPECT_EQ(pairs, (std::multimap<std::string, std::string>{{"null", ""}}));
}

TEST_F(FormElements, OneTitleOnlyAndNoForeignChildren) {
    AGPTitle first;
    AGPTitle second;
    AGPText stray;
    EXPECT_TRUE(mForm->addChild(first));
    EXPECT_FALSE(mForm->addChild(second));
    EXPECT_FALSE(mForm->addChild(stray));
    mForm->removeChild(&first);
}

TEST_F(FormElements, ItemCountLimitsTheWidgetButNotThePairs) {
    set(*mForm, "ItemCount", "2");
    child<AGPIppItem>(*mForm); // no display item: no widget, not counted
    field(*mForm, "a");
    field(*mForm, "b");
    AGPIppTextField* third = field(*mForm, "c");
    set(*third, "MaxSize", "4");
    build();
    ASSERT_NE(mForm->getForm(), nullptr);
    EXPECT_EQ(mForm->getForm()->size(), 2);
    EXPECT_EQ(static_cast<DisplayAPI::TextField*>(third->getDisplayItem())->getMaxFieldLength(), 4);
    static_cast<DisplayAPI::TextField*>(third->getDisplayItem())->setString("1234");
    std::multimap<std::string, std::string> pairs;
    AGPMessage none;
    EXPECT_TRUE(mForm->gatherKeyValues(pairs, none));
    EXPECT_EQ(pairs, (std::multimap<std::string, std::string>{{"a", ""}, {"b", ""}, {"c", "1234"}}))
        << "typed text counts before it is committed";
}

TEST_F(FormElements, PasswordsAreComparedOnlyAsOnePair) {
    set(*mForm, "ItemCount", "3");
    AGPIppTextField* one = field(*mForm, "p1", "PASSWORD");
    AGPIppTextField* two = field(*mForm, "p2", "PASSWORD");
    AGPIppTextField* again = field(*mForm, "v", "VALIDATE");
    build();
    static_cast<DisplayAPI::TextField*>(one->getDisplayItem())->setString("x");
    static_cast<DisplayAPI::TextField*>(two->getDisplayItem())->setString("y");
    static_cast<DisplayAPI::TextField*>(again->getDisplayItem())->setString("z");
    std::multimap<std::string, std::string> pairs;
    AGPMessage none;
    EXPECT_TRUE(mForm->gatherKeyValues(pairs, none)) << "two passwords: no comparison";
    EXPECT_EQ(pairs.size(), 3u);
}

TEST_F(FormElements, CancelAndRollbackRestoreTheFieldText) {
    set(*mForm, "ItemCount", "1");
    AGPIppTextField* pin = field(*mForm, "pin", "NUMERIC");
    set(*pin, "Default", "TEXT");
    auto* initial = new AGPText();
    mOwned.insert(mOwned.begin(), initial);
    std::string content = "7";
    initial->addContent(content);
    ASSERT_TRUE(pin->addChild(*initial));
    initial->setParent(pin);
    build();
    auto* widget = static_cast<DisplayAPI::TextField*>(pin->getDisplayItem());
    EXPECT_EQ(widget->getString(), "7");
    widget->setString("12");
    pin->commit();
    widget->setString("12a");
    EXPECT_FALSE(pin->isValidValueEntered());
    pin->rollback();
    EXPECT_EQ(widget->getString(), "12");
    mForm->handleCancelCommand();
    EXPECT_EQ(widget->getString(), "7");
    EXPECT_EQ(pin->getCommittedText(), "7");
}

TEST_F(FormElements, MessagesAfterTheWidgetsAreGoneAreDiscarded) {
    set(*mForm, "ItemCount", "1");
    field(*mForm, "a");
    build();
    for (AGPCommonBase* element : mOwned) {
        element->hideElement();
    }
    mForm->hideElement();
    AGPMessage message(AGPMessage::Command_Select, "");
    mForm->processMessage(message);
    EXPECT_EQ(mForm->getDisplayAPIDisplayable(), nullptr);
}

} // namespace
