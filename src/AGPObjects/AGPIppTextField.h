// A one-line labelled text entry of a form, contributing its key and the entered text.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPDefault;
class AGPKey;

namespace DisplayAPI {
class TextField;
}

class AGPIppTextField : public AGPCommonBase, public AGPDisplayItemIfc, public AGPKeyValueProviderIfc {
public:
    enum AGPConstraint : std::int32_t {
        CONSTRAINT_ANY = 0,
        NUMERIC = 1,
        PASSWORD = 2,
        PHONENUMBER = 3,
        URL = 4,
        EMAILADDR = 5,
        VALIDATE = 6
    };
    enum AGPPassword : std::int32_t { PASSWORD_YES = 0, PASSWORD_NO = 1 };
    enum AGPUneditable : std::int32_t { UNEDITABLE_YES = 0, UNEDITABLE_NO = 1 };

    static constexpr std::uint32_t MAXSIZE_NONE = 0xFFFFFFFFu;

    AGPIppTextField();
    AGPIppTextField(const AGPIppTextField&) = delete;
    AGPIppTextField& operator=(const AGPIppTextField&) = delete;
    ~AGPIppTextField() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppTextField; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override { return isValidContainer(); }
    void initializeElement() override;
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void performCancel() override;
    void commit() override;
    void rollback() override;

    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    bool isValidContainer() { return isCountValidAGPLabel() && isCountValidAGPText(); }
    bool isCountValidAGPLabel() { return mLabelCount.isCountValid(); }
    bool isCountValidAGPText() { return mTextCount.isCountValid(); }

    std::uint32_t getAGPMaxSize() const { return mMaxSize; }
    void setAGPMaxSize(std::uint32_t maxSize) { mMaxSize = maxSize; }
    AGPConstraint getAGPConstraint() const { return mConstraint; }
    void setAGPConstraint(AGPConstraint constraint) { mConstraint = constraint; }
    AGPPassword getAGPPassword() const { return mPassword; }
    void setAGPPassword(AGPPassword password) { mPassword = password; }
    AGPUneditable getAGPUneditable() const { return mUneditable; }
    void setAGPUneditable(AGPUneditable uneditable) { mUneditable = uneditable; }
    AGPDefault* getAGPDefault();
    AGPKey* getAGPKey();
    // The text committed last: what Cancel on the form's alert returns to.
    const std::string& getCommittedText() const { return mText; }

    // False (and no limit) for anything but a whole non-negative number.
    static bool parseAGPMaxSize(const std::string& text, std::uint32_t& maxSize);
    static AGPConstraint parseAGPConstraint(const std::string& text);
    static AGPPassword parseAGPPassword(const std::string& text);
    static AGPUneditable parseAGPUneditable(const std::string& text);

    void createAndInitDisplayElements(bool fromDocument);
    // The initial text as the document gives it; also becomes the committed text.
    std::string getTextFromXml();
    // The widget's current text, empty without widget.
    std::string getDisplayItemsValue();
    bool isValidValueEntered();

private:
    AGPChildCount mLabelCount;
    AGPChildCount mTextCount;
    std::uint32_t mMaxSize;
    AGPConstraint mConstraint;
    AGPPassword mPassword;
    AGPUneditable mUneditable;
    AGPDefault* mDefault;
    AGPKey* mKey;
    DisplayAPI::TextField* mTextField;
    std::string mText;
};
