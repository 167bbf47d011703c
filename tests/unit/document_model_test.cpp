// Tests of the element base, the type table, the registry, the factory, the pool and the value elements.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <random>
#include <unordered_map>

#include "AGPCommonBase.h"
#include "AGPDefault.h"
#include "AGPFColor.h"
#include "AGPIdTable.h"
#include "AGPKey.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPScreenID.h"
#include "AGPTitle.h"
#include "AGPUrlKey.h"
#include "AGPValue.h"

namespace {

// A container that accepts every child, standing in for the screen elements in tree tests.
class Container : public AGPCommonBase {
public:
    Container() { registerElement(); }
    ~Container() override { unregisterElement(); }
    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppDisplay; }
    bool addChild(AGPCommonBase& child) override { return addCountedChild(mAny, child); }
    AGPChildCount mAny{0, -1};
};

class Listener : public AGPScreenFocusListenerIfc {
public:
    void screenGainedFocus() override { ++mGained; }
    void screenLostFocus() override { ++mLost; }
    int mGained = 0;
    int mLost = 0;
};

class DocumentModel : public ::testing::Test {
protected:
    void TearDown() override { AGPPhoneletManager::shutdownPhonelet(); }
    AGPObjectMap& registry() { return *AGPPhoneletManager::getAGPObjectMap(); }

    AGPCommonBase* link(AGPCommonBase* parent, AGPCommonBase* child) {
        parent->addChild(*child);
        child->setParent(parent);
        return child;
    }
};

} // namespace

TEST_F(DocumentModel, TypeNames) {
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(AGPObjectTypeInfo::ti_IppForm), "ti_IppForm");
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(AGPObjectTypeInfo::ti_Encapsulation_s), "ti_Encapsulation_s");
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(AGPObjectTypeInfo::ti_timeZoneType), "ti_timeZoneType");
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(AGPObjectTypeInfo::ti_Header), "unknown_type");
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(AGPObjectTypeInfo::ti_NoType), "unknown_type");
    EXPECT_EQ(AGPObjectTypeInfo::getTypeName(static_cast<AGPObjectTypeInfo::AGPObjectType>(999)),
              "unknown_type");
}

TEST_F(DocumentModel, RegistryHandsOutIdsAndCountsTypes) {
    auto* first = new AGPTitle();
    auto* second = new AGPTitle();
    EXPECT_EQ(first->getAGPObjectID(), 1u);
    EXPECT_EQ(second->getAGPObjectID(), 2u);
    EXPECT_EQ(registry().getAGPObject(2), second);
    EXPECT_EQ(registry().getAGPObject(0), nullptr);
    EXPECT_EQ(registry().getTypeCount("ti_Title"), 2);

    delete first;
    EXPECT_EQ(registry().getAGPObject(1), nullptr);
    EXPECT_EQ(registry().getTypeCount("ti_Title"), 1);
    EXPECT_FALSE(registry().removeAGPObject(1));
    EXPECT_FALSE(registry().removeAGPObjectTree(12345));

    auto* third = new AGPTitle();
    EXPECT_EQ(third->getAGPObjectID(), 3u) << "identifiers are not reused";
    delete second;
    delete third;
    EXPECT_EQ(registry().getTypeCount("ti_Title"), 0) << "counts may fall to zero and stay";
    EXPECT_EQ(registry().size(), 0u);
}

TEST_F(DocumentModel, RegistryCounterGoesRoundOntoFreeIdentifiers) {
    auto* one = new AGPTitle();
    auto* two = new AGPTitle();
    auto* three = new AGPTitle();
    delete two;
    registry().setNextIdForTesting(std::numeric_limits<AGPId>::max());
    auto* last = new AGPTitle();
    EXPECT_EQ(last->getAGPObjectID(), std::numeric_limits<AGPId>::max());
    auto* wrapped = new AGPTitle();
    EXPECT_EQ(wrapped->getAGPObjectID(), 2u) << "1 still lives, 0 is never handed out";
    auto* next = new AGPTitle();
    EXPECT_EQ(next->getAGPObjectID(), 4u) << "past 3, which also still lives";
    EXPECT_EQ(registry().getAGPObject(2), wrapped);
    for (AGPTitle* title : {one, three, last, wrapped, next}) {
        delete title;
    }
    EXPECT_EQ(registry().size(), 0u);
}

// The table against a standard map through random additions and removals: long probe runs
// (counting identifiers and far ones that meet them), growth to a large tree and its removal.
TEST(AGPIdTable, AgreesWithAStandardMapThroughGrowthAndRemoval) {
    AGPIdTable table;
    std::unordered_map<AGPId, AGPCommonBase*> expected;
    std::mt19937 random(7);
    const auto element = [](AGPId id) {
        return reinterpret_cast<AGPCommonBase*>(static_cast<uintptr_t>(id) * 16);
    };
    const auto check = [&] {
        ASSERT_EQ(table.size(), expected.size());
        for (const auto& entry : expected) {
            ASSERT_EQ(table.find(entry.first), entry.second) << entry.first;
        }
    };
    AGPId next = 1;
    for (int step = 0; step < 60000; ++step) {
        if (random() % 3 != 0 || expected.empty()) {
            const AGPId id = random() % 16 == 0 ? static_cast<AGPId>(random()) | 1u : next++;
            EXPECT_EQ(table.insert(id, element(id)), expected.emplace(id, element(id)).second);
        } else {
            const AGPId id = std::next(expected.begin(), random() % expected.size())->first;
            EXPECT_EQ(table.take(id), element(id));
            expected.erase(id);
            EXPECT_EQ(table.take(id), nullptr);
        }
        if (step % 5000 == 0) {
            check();
        }
    }
    check();
    EXPECT_GE(3 * table.capacity(), 4 * table.size());
    while (expected.size() > 10) {
        const AGPId id = expected.begin()->first;
        EXPECT_EQ(table.take(id), element(id));
        expected.erase(id);
    }
    check();
    EXPECT_FALSE(table.insert(0, element(1))) << "0 means no element";
    EXPECT_EQ(table.find(0), nullptr);
}

TEST_F(DocumentModel, TreeListingDeletionAndNavigation) {
    // display( screenA( form( title ) ), screenB ) in post-order: title, form, A, B, display.
    auto* display = new Container();
    auto* screenA = link(display, new Container());
    auto* form = link(screenA, new Container());
    auto* title = link(form, new AGPTitle());
    auto* screenB = link(display, new Container());

    std::vector<AGPCommonBase*> order;
    ASSERT_TRUE(AGPCommonBase::createTreeExplorationVector(display, order));
    EXPECT_EQ(order, (std::vector<AGPCommonBase*>{title, form, screenA, screenB, display}));
    order.assign(3, nullptr);
    EXPECT_FALSE(AGPCommonBase::createTreeExplorationVector(nullptr, order));
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(AGPCommonBase::createTreeExplorationVector(title, order));
    EXPECT_EQ(order, std::vector<AGPCommonBase*>{title});

    EXPECT_EQ(title->getRootElement(), display);
    EXPECT_EQ(display->getRootElement(), display);
    EXPECT_EQ(form->getChildByType(AGPObjectTypeInfo::ti_Title), title);
    EXPECT_EQ(form->getChildByType(AGPObjectTypeInfo::ti_Url), nullptr);
    std::vector<AGPCommonBase*> screens{title};
    display->getChildrenByType(AGPObjectTypeInfo::ti_IppDisplay, screens);
    EXPECT_EQ(screens, (std::vector<AGPCommonBase*>{screenA, screenB}));

    const AGPId ids[] = {display->getAGPObjectID(), screenA->getAGPObjectID(), title->getAGPObjectID()};
    EXPECT_EQ(registry().getTypeCount("ti_IppDisplay"), 4);
    EXPECT_TRUE(registry().removeAGPObjectTree(display->getAGPObjectID()));
    for (AGPId id : ids) {
        EXPECT_EQ(registry().getAGPObject(id), nullptr);
    }
    EXPECT_EQ(registry().getTypeCount("ti_IppDisplay"), 0);
    EXPECT_EQ(registry().getTypeCount("ti_Title"), 0);
}

TEST_F(DocumentModel, ChildCountingBounds) {
    Container limited;
    limited.mAny = AGPChildCount(1, 2);
    EXPECT_FALSE(limited.mAny.isCountValid()) << "below the minimum";
    AGPTitle a, b, c;
    EXPECT_TRUE(limited.addChild(a));
    EXPECT_TRUE(limited.addChild(b));
    EXPECT_FALSE(limited.addChild(c)) << "the maximum is reached";
    EXPECT_TRUE(limited.mAny.isCountValid());
    EXPECT_EQ(limited.getSequence().size(), 2u);
}

TEST_F(DocumentModel, ScreenFocusListenersClimbToTheRoot) {
    auto* screen = new Container();
    auto* form = link(screen, new Container());
    auto* key = link(form, new AGPTitle());
    Listener listener;
    Listener other;

    screen->addScreenFocusListener(&other);
    form->addScreenFocusListener(&other);
    key->addScreenFocusListener(&listener);
    key->addScreenFocusListener(&listener);
    screen->notifyScreenGainedFocus();
    EXPECT_EQ(listener.mGained, 1) << "registered once on every ancestor";
    EXPECT_EQ(other.mGained, 1) << "registration stops at the first ancestor holding it";

    key->removeScreenFocusListener(&listener);
    screen->notifyScreenLostFocus();
    EXPECT_EQ(listener.mLost, 0);
    EXPECT_EQ(other.mLost, 1);
    registry().removeAGPObjectTree(screen->getAGPObjectID());
}

TEST_F(DocumentModel, FactoryNames) {
    for (std::string name : {"Number", "Encapsulation_s"}) {
        std::unique_ptr<AGPCommonBase> element(AGPCommonBase::getInstanceFor(name));
        ASSERT_NE(element, nullptr) << name;
        EXPECT_EQ(element->getAGPObjectType(), AGPObjectTypeInfo::ti_Encapsulation_s);
        EXPECT_NE(element->getAGPObjectID(), 0u) << "factory elements come registered";
    }
    for (std::string name : {"number", "title", "TITLE", "NoSuchElement", ""}) {
        EXPECT_EQ(AGPCommonBase::getInstanceFor(name), nullptr) << name;
    }
    std::string title = "Title";
    std::unique_ptr<AGPCommonBase> element(AGPCommonBase::getInstanceFor(title));
    EXPECT_EQ(element->getAGPObjectType(), AGPObjectTypeInfo::ti_Title);
}

TEST_F(DocumentModel, PoolRegistersFirstAndLeavesNothingBehind) {
    EXPECT_EQ(AGPObjectPool::getAGPKey_PARSE_FAILED(), nullptr);
    AGPObjectPool::initPool();
    EXPECT_EQ(AGPObjectPool::getAGPKey_PARSE_FAILED()->getAGPObjectID(), 1u);
    EXPECT_EQ(AGPObjectPool::getAGPValue_PARSE_FAILED()->getAGPObjectID(), 2u);
    EXPECT_EQ(AGPObjectPool::getAGPFColor_PARSE_FAILED()->getColourType()->getAGPObjectID(), 4u)
        << "each colour's own colour type registers just before it";
    EXPECT_EQ(AGPObjectPool::getAGPFColor_PARSE_FAILED()->getAGPObjectID(), 5u);
    EXPECT_EQ(AGPObjectPool::getAGPDefault_TEXT()->getValueText(), "TEXT");
    EXPECT_EQ(registry().size(), 23u);

    AGPObjectPool::shutdownPool();
    EXPECT_EQ(registry().size(), 0u);
    EXPECT_EQ(AGPObjectPool::getAGPTime_PARSE_FAILED(), nullptr);
}

TEST_F(DocumentModel, ValueElementsParseAndCompareByText) {
    AGPObjectPool::initPool();
    std::string empty;
    std::string failed = "PARSE_FAILED";
    std::unique_ptr<AGPKey> nullKey(AGPKey::parseAGPKey(empty));
    EXPECT_EQ(nullKey->getValueText(), "null");
    std::unique_ptr<AGPValue> emptyValue(AGPValue::parseAGPValue(empty));
    EXPECT_EQ(emptyValue->getValueText(), "");
    EXPECT_TRUE(*emptyValue != *AGPObjectPool::getAGPValue_PARSE_FAILED());
    std::unique_ptr<AGPKey> failedKey(AGPKey::parseAGPKey(failed));
    EXPECT_TRUE(*failedKey == *AGPObjectPool::getAGPKey_PARSE_FAILED()) << "only PARSE_FAILED is refused";

    AGPDefault copy(*AGPObjectPool::getAGPDefault_NULL());
    EXPECT_EQ(copy.getValueText(), "NULL");
    EXPECT_NE(copy.getAGPObjectID(), AGPObjectPool::getAGPDefault_NULL()->getAGPObjectID());

    AGPFColor plain, otherPlain;
    std::string red = "red";
    std::unique_ptr<AGPFColor> coloured(AGPFColor::parseAGPFColor(red));
    std::unique_ptr<AGPFColor> alsoRed(AGPFColor::parseAGPFColor(red));
    EXPECT_TRUE(plain == otherPlain);
    EXPECT_TRUE(plain != *coloured);
    EXPECT_TRUE(*coloured == *alsoRed);
    EXPECT_TRUE(*coloured != *AGPObjectPool::getAGPFColor_PARSE_FAILED());

    AGPScreenID screenId;
    for (std::string bad : {"-1", "x", ""}) {
        EXPECT_FALSE(screenId.addContent(bad)) << bad;
    }
    EXPECT_EQ(screenId.getScreenID(), 0);
    std::string twelve = "12";
    EXPECT_TRUE(screenId.addContent(twelve));
    EXPECT_EQ(screenId.getScreenID(), 12);
    EXPECT_EQ(screenId.getContent(), "") << "the number is not kept as text";

    AGPUrlKey urlKey;
    std::string content = "ignored";
    urlKey.addContent(content);
    EXPECT_EQ(urlKey.getContent(), "");
    std::string dial = "dial";
    std::unique_ptr<AGPUrlKey> parsed(AGPUrlKey::parseAGPUrlKey(dial));
    EXPECT_EQ(parsed->getContent(), "dial");
}
