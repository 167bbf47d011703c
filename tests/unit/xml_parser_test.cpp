// Tests of the document parser: trees, recovery from unknown elements, refusals and failures.
#include <gtest/gtest.h>

#include <thread>

#include "AGPCommonBase.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPXMLParser.h"
#include "logging/LogCapture.h"

namespace {

class XMLParser : public ::testing::Test {
protected:
    void SetUp() override {
        AGPObjectPool::initPool();
        mPoolSize = registry().size();
    }
    void TearDown() override { AGPPhoneletManager::shutdownPhonelet(); }

    AGPObjectMap& registry() { return *AGPPhoneletManager::getAGPObjectMap(); }
    size_t elementsAlive() { return registry().size() - mPoolSize; }

    bool parse(std::string xml, AGPCommonBase*& root) {
        return AGPPhoneletManager::getAGPXMLParser()->parseXMLData(xml, root);
    }
    void dropTree(AGPCommonBase* root) {
        if (root != nullptr) {
            registry().removeAGPObjectTree(root->getAGPObjectID());
        }
    }

    size_t mPoolSize = 0;
};

} // namespace

TEST_F(XMLParser, KeepsBlanksWhereTheyAreText) {
    AGPCommonBase* root = nullptr;
    ASSERT_TRUE(parse("<Title>  Hello  </Title>", root));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getContent(), "  Hello  ") << "a piece with words keeps its blanks";
    dropTree(root);

    ASSERT_TRUE(parse("<Title>\n   \n</Title>", root));
    EXPECT_EQ(root->getContent(), "") << "layout between tags is dropped outside Text";
    dropTree(root);

    ASSERT_TRUE(parse("<Text>  \n line one\n\n  line &amp; two\t</Text>", root));
    EXPECT_EQ(root->getContent(), "  \n line one\n\n  line & two\t");
    dropTree(root);
    EXPECT_EQ(elementsAlive(), 0u);
}

TEST_F(XMLParser, SkipsUnknownElementsWithTheirSubtrees) {
    LogCapture log(6);
    AGPCommonBase* root = nullptr;
    ASSERT_TRUE(parse("<Text>a<Unknown><Title>inner</Title>lost</Unknown>b</Text>", root));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getContent(), "ab") << "content after the unknown element reaches its parent again";
    EXPECT_EQ(elementsAlive(), 1u) << "nothing inside the unknown element was created";
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "Couldn't get instance for [Unknown], set recovery level 1"));
    EXPECT_TRUE(
        log.contains("AGPXMLParser", 5, "Start element [Title] ignored due to recovery reason (level 2)"));
    EXPECT_TRUE(log.contains(
        "AGPXMLParser", 5, "Content [lost] for element [ti_Text] ignored due to recovery reason (level 2)"));
    EXPECT_TRUE(
        log.contains("AGPXMLParser", 5, "End element [Title] ignored due to recovery reason (level 2)\n"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "Reset recovery level 1 for element [Unknown]"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 6, "Element [Text] created (level 0)"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 6, "Content [a] added to element [ti_Text] (level 1)\n"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 6, "End element [Text] (level 0)\n"));
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "Start parsing 58 bytes of XML data\n"));
    dropTree(root);

    ASSERT_TRUE(parse("<IppUnknownRoot><Title>x</Title></IppUnknownRoot>", root));
    EXPECT_EQ(root, nullptr) << "an unknown root skips the whole document";
    EXPECT_EQ(elementsAlive(), 0u);
}

TEST_F(XMLParser, RefusedAttributesContentAndChildren) {
    LogCapture log(6);
    AGPCommonBase* root = nullptr;
    ASSERT_TRUE(parse("<Text Key=\"PARSE_FAILED\">t<Title>refused child</Title><Text>x</Text></Text>", root));
    EXPECT_TRUE(log.contains("AGPXMLParser", 6,
                             "Couldn't set attribute [Key]=[PARSE_FAILED] to element [Text] (level 0)"));
    EXPECT_TRUE(root->getSequence().empty()) << "Text takes no Title and no Text";
    EXPECT_EQ(elementsAlive(), 1u) << "refused children are deleted when they end";
    dropTree(root);

    ASSERT_TRUE(parse("<ScreenID>-4</ScreenID>", root));
    EXPECT_TRUE(
        log.contains("AGPXMLParser", 6, "Couldn't add content [-4] to element [ti_ScreenID] (level 1)"));
    dropTree(root);
}

TEST_F(XMLParser, ReportsMalformedDocumentsWithTheirLine) {
    LogCapture log(5);
    AGPCommonBase* root = reinterpret_cast<AGPCommonBase*>(1);
    EXPECT_FALSE(parse("", root));
    EXPECT_EQ(root, nullptr);
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "XML parser error\nLine: 1\nno element found"));

    EXPECT_FALSE(parse("<Text>\nline two\n<Title>never closed", root));
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "XML parser error\nLine: 3\nunclosed token") ||
                log.contains("AGPXMLParser", 5, "XML parser error\nLine: 3\nno element found"));
    EXPECT_FALSE(parse("<Text>a</Title>", root));
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "XML parser error\nLine: 1\nmismatched tag"));
    EXPECT_FALSE(parse("<Text>a</Text><Text>b</Text>", root));
    EXPECT_EQ(root, nullptr);
    EXPECT_EQ(elementsAlive(), 0u) << "partial trees, refused children included, are deleted";
}

TEST_F(XMLParser, RefusesEveryEntityDeclaration) {
    LogCapture log(5);
    const char* documents[] = {
        "<!DOCTYPE Text [<!ENTITY unused \"x\">]><Text>plain</Text>",
        "<!DOCTYPE Text [<!ENTITY secret SYSTEM \"file:///etc/hostname\">]><Text>&secret;</Text>",
        "<!DOCTYPE Text [<!ENTITY % p \"x\">]><Text>p</Text>",
        "<!DOCTYPE lolz [<!ENTITY lol \"lol\"><!ENTITY lol1 "
        "\"&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;&lol;\">"
        "<!ENTITY lol2 "
        "\"&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;&lol1;\">]><Text>&lol2;</Text>",
    };
    for (const char* document : documents) {
        AGPCommonBase* root = nullptr;
        EXPECT_FALSE(parse(document, root)) << document;
        EXPECT_EQ(root, nullptr);
    }
    EXPECT_TRUE(log.contains("AGPXMLParser", 5, "XML parser error\nLine: 1\nparsing aborted"));
    EXPECT_EQ(elementsAlive(), 0u);

    AGPCommonBase* root = nullptr;
    ASSERT_TRUE(parse("<!DOCTYPE Text SYSTEM \"file:///etc/hostname\"><Text>a&#65;&lt;</Text>", root))
        << "an external subset is never read, and predefined entities need no declaration";
    EXPECT_EQ(root->getContent(), "aA<");
    dropTree(root);
}

TEST_F(XMLParser, SurvivesHugeAndDeepDocuments) {
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<Text>";
    }
    deep += "x";
    for (int i = 0; i < 100000; ++i) {
        deep += "</Text>";
    }
    AGPCommonBase* root = nullptr;
    ASSERT_TRUE(parse(deep, root));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(elementsAlive(), 1u);
    dropTree(root);

    std::string big = "<Text>" + std::string(20 * 1024 * 1024, 'y') + "</Text>";
    ASSERT_TRUE(parse(big, root));
    EXPECT_EQ(root->getContent().size(), 20u * 1024 * 1024);
    dropTree(root);
    EXPECT_EQ(elementsAlive(), 0u);
}

TEST_F(XMLParser, TwoThreadsGetTwoCompleteTrees) {
    auto document = [](const std::string& word) {
        std::string xml = "<Text>";
        for (int i = 0; i < 2000; ++i) {
            xml += word + "<Title>t</Title>";
        }
        return xml + "</Text>";
    };
    AGPCommonBase* first = nullptr;
    AGPCommonBase* second = nullptr;
    AGPPhoneletManager::getAGPXMLParser(); // services exist before the queue threads do
    std::thread one([&] { parse(document("a"), first); });
    std::thread two([&] { parse(document("b"), second); });
    one.join();
    two.join();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->getContent(), std::string(2000, 'a'));
    EXPECT_EQ(second->getContent(), std::string(2000, 'b'));
    EXPECT_EQ(elementsAlive(), 2u);
    dropTree(first);
    dropTree(second);
}
