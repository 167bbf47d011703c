// The document parser: streams an XML document through expat into a tree of registered elements.
#pragma once

#include <expat.h>

#include <string>
#include <vector>

class AGPCommonBase;
class Semaphore;

// The state of one parse, handed to expat as its user data.
struct AGPXMLParseState {
    int mLevel = 0;
    // Level of the outermost unknown element that is open; 65535 means none.
    int mRecoveryLevel = 65535;
    AGPCommonBase* mCurrent = nullptr;
    AGPCommonBase* mRoot = nullptr;
    // For each created element that is open, innermost last: whether its parent accepted it.
    // A refused element is in no child list, so the parser deletes it itself when it ends.
    std::vector<bool> mAccepted;
    // Elements begun so far; every so many, the parse asks whether the phonelet is stopping.
    unsigned int mElementsBegun = 0;
    // Whether the element-by-element trace (level 6) is taken, asked once a document.
    bool mTrace = false;
    // Reused for each name, attribute and text piece handed to the elements, so that a long one
    // costs no allocation after the first.
    std::string mName;
    std::string mValue;
    std::string mPiece;
};

class AGPXMLParser {
public:
    AGPXMLParser();
    ~AGPXMLParser();
    AGPXMLParser(const AGPXMLParser&) = delete;
    AGPXMLParser& operator=(const AGPXMLParser&) = delete;

    bool startAGPXMLParser();
    // Parses `data`. True with `root` set to the new tree (null for an unknown root element);
    // false with `root` null when the document is not well-formed or declares an entity.
    bool parseXMLData(std::string& data, AGPCommonBase*& root);

    void xmlStartElement(void* state, const char* name, const char** attributes);
    void xmlEndElement(void* state, const char* name);
    void xmlCharacterDataHandler(void* state, const char* text, int length);

    static AGPXMLParser* m_thisParser;

private:
    static void XMLstartElement_(void* state, const char* name, const char** attributes);
    static void XMLendElement_(void* state, const char* name);
    static void XMLCharacterDataHandler_(void* state, const char* text, int length);
    static void XMLEntityDeclHandler_(void* state, const XML_Char* entityName, int isParameterEntity,
                                      const XML_Char* value, int valueLength, const XML_Char* base,
                                      const XML_Char* systemId, const XML_Char* publicId,
                                      const XML_Char* notationName);

    bool parseWhole(std::string& data);
    void showParseError(std::string text);
    void deleteRefusedChild(AGPXMLParseState& state);
    void deletePartialTree(AGPXMLParseState& state);

    Semaphore* mParseLock;
    XML_Parser mXMLParser;
};
