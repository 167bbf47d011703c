// Parse throughput: the phonelet's document parser against bare expat on the same document.
#include <benchmark/benchmark.h>
#include <expat.h>

#include <string>

#include "AGPCommonBase.h"
#include "AGPObjectMap.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPXMLParser.h"

namespace {

// A list of 500 options of two lines each, name and extension, about 90 KB.
std::string makeListDocument() {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<IppDisplay>\n<IppScreen>\n<IppList Type=\"IMPLICIT\">\n"
        "<Title>Directory</Title>\n<Url>http://server.example/app/select</Url>\n";
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(i);
        xml += "<Option Key=\"entry\" Value=\"" + n + "\" Selected=\"FALSE\">\n<OptionText>Entry number " +
               n + " of the directory list</OptionText>\n<OptionText>Extension 4" + n + " &amp; room " + n +
               ", floor 2</OptionText>\n</Option>\n";
    }
    xml += "</IppList>\n</IppScreen>\n</IppDisplay>\n";
    return xml;
}

// The same amount of elements, text and attributes, made only of value elements, so that every
// element is created, registered, filled and deleted whatever screen elements exist.
std::string makeValueElementDocument() {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Text>\n";
    for (int i = 0; i < 500; ++i) {
        const std::string n = std::to_string(i);
        xml += "<Title Key=\"entry\" Value=\"" + n + "\" Selected=\"FALSE\">\n<Label>Entry number " + n +
               " of the directory list</Label>\n<Url>http://server.example/app/entry?id=" + n +
               "&amp;view=full</Url>\n</Title>\n";
    }
    return xml + "</Text>\n";
}

void parseWithPhonelet(benchmark::State& state, std::string xml) {
    AGPObjectPool::initPool();
    AGPXMLParser* parser = AGPPhoneletManager::getAGPXMLParser();
    for (auto _ : state) {
        AGPCommonBase* root = nullptr;
        parser->parseXMLData(xml, root);
        if (root != nullptr) {
            AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(root->getAGPObjectID());
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
    AGPPhoneletManager::shutdownPhonelet();
}

void BM_ParseListDocument(benchmark::State& state) {
    parseWithPhonelet(state, makeListDocument());
}
BENCHMARK(BM_ParseListDocument);

void BM_ParseValueElementDocument(benchmark::State& state) {
    parseWithPhonelet(state, makeValueElementDocument());
}
BENCHMARK(BM_ParseValueElementDocument);

void emptyStart(void*, const char*, const char**) {}
void emptyEnd(void*, const char*) {}
void emptyText(void*, const char*, int) {}

void BM_BareExpat(benchmark::State& state) {
    const std::string xml = makeListDocument();
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetElementHandler(parser, emptyStart, emptyEnd);
        XML_SetCharacterDataHandler(parser, emptyText);
        benchmark::DoNotOptimize(XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1));
        XML_ParserFree(parser);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
}
BENCHMARK(BM_BareExpat);

} // namespace
