// The document parser: streams an XML document through expat into a tree of registered elements.
#include "AGPXMLParser.h"

#define AGP_LOG_MODULE "AGPXMLParser"
#define AGP_LOG_SOURCE "./src/AGPXMLParser.cpp"

#include <cctype>
#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "AGPCommonBase.h"
#include "AGPLog.h"
#include "AGPObjectMap.h"
#include "AGPPhonelet.h"
#include "AGPPhoneletManager.h"
#include "threads/Semaphore.h"

// The element-by-element trace: whether anyone takes it is asked once a document, not for every
// element, attribute and text piece (a level change applies from the next document).
#define AGP_TRACE(state, ...)                                                                                \
    do {                                                                                                     \
        if ((state).mTrace) {                                                                                \
            AGP_LOG(6, __VA_ARGS__);                                                                         \
        }                                                                                                    \
    } while (0)

namespace {

const int kNoRecovery = 65535;

const char* typeNameOf(AGPCommonBase* element) {
    return AGPObjectTypeInfo::getTypeNameRef(element->getAGPObjectType()).c_str();
}

// Blank pieces between the tags of elements other than Text are layout, not content.
bool isLayoutOnly(const char* text, int length) {
    if (length == 0 || (length == 1 && text[0] == '\n')) {
        return true;
    }
    for (int i = 0; i < length; ++i) {
        if (text[i] != ' ' && text[i] != '\t') {
            return false;
        }
    }
    return true;
}

// The two single-byte encodings that Windows servers commonly declare, which expat does not know
// itself: each byte's Unicode code point.
const int kWindows1252High[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::string lowerCase(const XML_Char* name) {
    std::string lower = name != nullptr ? name : "";
    for (char& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lower;
}

// Fills expat's byte table for windows-1252 or ISO-8859-15 (and their usual aliases); any other
// name stays unknown and the document gets the parser's error.
int XMLUnknownEncodingHandler_(void*, const XML_Char* name, XML_Encoding* info) {
    const std::string encoding = lowerCase(name);
    const bool windows1252 = encoding == "windows-1252" || encoding == "cp1252";
    const bool latin9 = encoding == "iso-8859-15" || encoding == "iso8859-15" || encoding == "latin-9" ||
                        encoding == "latin9";
    if (!windows1252 && !latin9) {
        return XML_STATUS_ERROR;
    }
    for (int byte = 0; byte < 256; ++byte) {
        info->map[byte] = byte; // both agree with Latin-1 apart from the bytes below
    }
    if (windows1252) {
        for (int byte = 0x80; byte < 0xA0; ++byte) {
            info->map[byte] = kWindows1252High[byte - 0x80];
        }
    } else {
        const std::pair<int, int> euro[] = {{0xA4, 0x20AC}, {0xA6, 0x0160}, {0xA8, 0x0161}, {0xB4, 0x017D},
                                            {0xB8, 0x017E}, {0xBC, 0x0152}, {0xBD, 0x0153}, {0xBE, 0x0178}};
        for (const auto& entry : euro) {
            info->map[entry.first] = entry.second;
        }
    }
    info->data = nullptr;
    info->convert = nullptr;
    info->release = nullptr;
    return XML_STATUS_OK;
}

} // namespace

AGPXMLParser* AGPXMLParser::m_thisParser = nullptr;

AGPXMLParser::AGPXMLParser() : mParseLock(new Semaphore(1, 1, false)), mXMLParser(nullptr) {
    m_thisParser = this;
}

AGPXMLParser::~AGPXMLParser() {
    m_thisParser = nullptr;
    delete mParseLock;
}

bool AGPXMLParser::startAGPXMLParser() {
    AGP_LOG(5, "AGPXMLParser started successfully");
    return true;
}

bool AGPXMLParser::parseXMLData(std::string& data, AGPCommonBase*& root) {
    root = nullptr;
    mParseLock->take(-1);
    AGPXMLParseState state;
    state.mTrace = loggingOnAppUni(AGP_LOG_MODULE, 6);
    AGP_LOG(5, "Start parsing %d bytes of XML data\n", static_cast<int>(data.size()));

    mXMLParser = XML_ParserCreate(nullptr);
    XML_SetUserData(mXMLParser, &state);
    XML_SetEntityDeclHandler(mXMLParser, XMLEntityDeclHandler_);
    XML_SetElementHandler(mXMLParser, XMLstartElement_, XMLendElement_);
    XML_SetCharacterDataHandler(mXMLParser, XMLCharacterDataHandler_);
    XML_SetUnknownEncodingHandler(mXMLParser, XMLUnknownEncodingHandler_, nullptr);

    const bool parsed = parseWhole(data);
    if (!parsed) {
        const std::string text =
            "XML parser error\nLine: " + std::to_string(XML_GetCurrentLineNumber(mXMLParser)) + "\n" +
            XML_ErrorString(XML_GetErrorCode(mXMLParser));
        showParseError(text);
        AGP_LOG(5, "%s", text.c_str());
        deletePartialTree(state);
    }
    XML_ParserFree(mXMLParser);
    mXMLParser = nullptr;
    mParseLock->give();
    if (parsed) {
        root = state.mRoot;
    }
    return parsed;
}

// A parser used without a phonelet (tests, tools) only logs the error.
void AGPXMLParser::showParseError(std::string text) {
    AGPPhonelet* phonelet = AGPPhoneletManager::getAGPPhonelet();
    if (phonelet != nullptr) {
        phonelet->displayErrorRequest("xml.app.error.parser", text);
    }
}

// One call for the whole document, as the final piece; only a document beyond the range of
// expat's length argument is fed in pieces.
bool AGPXMLParser::parseWhole(std::string& data) {
    const char* next = data.data();
    size_t left = data.size();
    while (left > static_cast<size_t>(INT_MAX)) {
        if (XML_Parse(mXMLParser, next, INT_MAX, XML_FALSE) != XML_STATUS_OK) {
            return false;
        }
        next += INT_MAX;
        left -= INT_MAX;
    }
    return XML_Parse(mXMLParser, next, static_cast<int>(left), XML_TRUE) == XML_STATUS_OK;
}

void AGPXMLParser::xmlStartElement(void* statePointer, const char* name, const char** attributes) {
    AGPXMLParseState& state = *static_cast<AGPXMLParseState*>(statePointer);
    // A stop must not wait for the rest of a large document.
    if ((++state.mElementsBegun & 1023u) == 0 && AGPPhoneletManager::isPhoneletShuttingDown()) {
        AGP_LOG(5, "Parse abandoned after %u elements: the phonelet is stopping", state.mElementsBegun);
        XML_StopParser(mXMLParser, XML_FALSE);
        return;
    }
    if (state.mLevel > state.mRecoveryLevel) {
        AGP_LOG(5, "Start element [%s] ignored due to recovery reason (level %d)", name, state.mLevel);
        ++state.mLevel;
        return;
    }
    state.mName.assign(name);
    AGPCommonBase* element = AGPCommonBase::getInstanceFor(state.mName);
    if (element == nullptr) {
        AGP_LOG(5, "Couldn't get instance for [%s], set recovery level %d", name, state.mLevel);
        state.mRecoveryLevel = state.mLevel;
        ++state.mLevel;
        return;
    }
    AGP_TRACE(state, "Element [%s] created (level %d)", name, state.mLevel);

    for (const char** attribute = attributes; attribute[0] != nullptr; attribute += 2) {
        state.mName.assign(attribute[0]);
        state.mValue.assign(attribute[1]);
        if (element->addAttribute(state.mName, state.mValue)) {
            AGP_TRACE(state, "Attribute [%s]=[%s] added to element [%s] (level %d)", attribute[0],
                      attribute[1], name, state.mLevel);
        } else {
            AGP_TRACE(state, "Couldn't set attribute [%s]=[%s] to element [%s] (level %d)", attribute[0],
                      attribute[1], name, state.mLevel);
        }
    }

    if (state.mCurrent != nullptr) {
        state.mAccepted.push_back(state.mCurrent->addChild(*element));
        element->setParent(state.mCurrent);
    } else {
        state.mAccepted.push_back(true);
        state.mRoot = element;
    }
    ++state.mLevel;
    state.mCurrent = element;
}

void AGPXMLParser::xmlEndElement(void* statePointer, const char* name) {
    AGPXMLParseState& state = *static_cast<AGPXMLParseState*>(statePointer);
    --state.mLevel;
    if (state.mLevel > state.mRecoveryLevel) {
        AGP_LOG(5, "End element [%s] ignored due to recovery reason (level %d)\n", name, state.mLevel);
        return;
    }
    if (state.mLevel == state.mRecoveryLevel) {
        AGP_LOG(5, "Reset recovery level %d for element [%s]", state.mLevel, name);
        state.mRecoveryLevel = kNoRecovery;
        return;
    }
    deleteRefusedChild(state);
    AGP_TRACE(state, "End element [%s] (level %d)\n", name, state.mLevel);
}

// The current element ends: its parent becomes current, and an element its parent refused is
// deleted with everything it accepted, since no tree owns it.
void AGPXMLParser::deleteRefusedChild(AGPXMLParseState& state) {
    AGPCommonBase* ended = state.mCurrent;
    state.mCurrent = ended->getParent();
    const bool accepted = state.mAccepted.back();
    state.mAccepted.pop_back();
    if (!accepted) {
        AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(ended->getAGPObjectID());
    }
}

void AGPXMLParser::deletePartialTree(AGPXMLParseState& state) {
    while (!state.mAccepted.empty()) {
        deleteRefusedChild(state);
    }
    AGPPhoneletManager::getAGPObjectMap()->removeAGPObjectTree(
        state.mRoot != nullptr ? state.mRoot->getAGPObjectID() : 0);
    state.mRoot = nullptr;
}

void AGPXMLParser::xmlCharacterDataHandler(void* statePointer, const char* text, int length) {
    AGPXMLParseState& state = *static_cast<AGPXMLParseState*>(statePointer);
    AGPCommonBase* current = state.mCurrent;
    if (current == nullptr) {
        return;
    }
    if (current->getAGPObjectType() != AGPObjectTypeInfo::ti_Text && isLayoutOnly(text, length)) {
        return;
    }
    std::string& piece = state.mPiece;
    piece.assign(text, static_cast<size_t>(length));
    if (state.mLevel > state.mRecoveryLevel) {
        AGP_LOG(5, "Content [%s] for element [%s] ignored due to recovery reason (level %d)", piece.c_str(),
                typeNameOf(current), state.mLevel);
        return;
    }
    if (current->addContent(piece)) {
        AGP_TRACE(state, "Content [%s] added to element [%s] (level %d)\n", piece.c_str(),
                  typeNameOf(current), state.mLevel);
    } else {
        AGP_TRACE(state, "Couldn't add content [%s] to element [%s] (level %d)", piece.c_str(),
                  typeNameOf(current), state.mLevel);
    }
}

void AGPXMLParser::XMLstartElement_(void* state, const char* name, const char** attributes) {
    m_thisParser->xmlStartElement(state, name, attributes);
}

void AGPXMLParser::XMLendElement_(void* state, const char* name) {
    m_thisParser->xmlEndElement(state, name);
}

void AGPXMLParser::XMLCharacterDataHandler_(void* state, const char* text, int length) {
    m_thisParser->xmlCharacterDataHandler(state, text, length);
}

// Any entity declaration ends the parse for good: such documents are refused whole.
void AGPXMLParser::XMLEntityDeclHandler_(void*, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                                         const XML_Char*, const XML_Char*, const XML_Char*) {
    XML_StopParser(m_thisParser->mXMLParser, XML_FALSE);
}
