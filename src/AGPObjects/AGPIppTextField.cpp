// A one-line labelled text entry of a form, contributing its key and the entered text.
#include "AGPIppTextField.h"

#include <string_view>

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppTextField.cpp"

#include "AGPDataObserver.h"
#include "AGPDefault.h"
#include "AGPIppForm.h"
#include "AGPKey.h"
#include "AGPLog.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPUtils.h"
#include "display/TextField.h"
#include "text/TranslationInfo.h"

using namespace std::string_view_literals;

namespace {

AGPDefault* newParseFailedDefault() {
    const AGPDefault* pooled = AGPObjectPool::getAGPDefault_PARSE_FAILED();
    return pooled != nullptr ? new AGPDefault(*pooled) : new AGPDefault(AGPObjectPool::kParseFailedText);
}

} // namespace

AGPIppTextField::AGPIppTextField()
    : mLabelCount(0, 1), mTextCount(0, 1), mMaxSize(MAXSIZE_NONE), mConstraint(CONSTRAINT_ANY),
      mPassword(PASSWORD_NO), mUneditable(UNEDITABLE_NO), mDefault(nullptr), mKey(nullptr),
      mTextField(nullptr) {
    registerElement();
}

// A widget that never entered a form is still ours; one in a form goes with the form widget.
AGPIppTextField::~AGPIppTextField() {
    unregisterElement();
    if (mTextField != nullptr && mTextField->getForm() == nullptr) {
        delete mTextField;
    }
    mTextField = nullptr;
    delete mDefault;
    delete mKey;
}

bool AGPIppTextField::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Text:
        return addCountedChild(mTextCount, child);
    default:
        return false;
    }
}

bool AGPIppTextField::addAttribute(std::string& name, std::string& value) {
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        if (!AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED())) {
            return true;
        }
        // A key that failed to parse is sent as if none were given.
        delete mKey;
        mKey = new AGPKey("null");
        return false;
    }
    if (name == "MaxSize"sv) {
        return parseAGPMaxSize(value, mMaxSize);
    }
    if (name == "Constraint"sv) {
        mConstraint = parseAGPConstraint(value);
        return true;
    }
    if (name == "Password"sv) {
        mPassword = parseAGPPassword(value);
        return true;
    }
    if (name == "Uneditable"sv) {
        mUneditable = parseAGPUneditable(value);
        return true;
    }
    if (name == "Default"sv) {
        delete mDefault;
        mDefault = AGPDefault::parseAGPDefault(value);
        return !AGPObjectPool::isPooled(*mDefault, AGPObjectPool::getAGPDefault_PARSE_FAILED());
    }
    return false;
}

bool AGPIppTextField::parseAGPMaxSize(const std::string& text, std::uint32_t& maxSize) {
    int number = 0;
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos ||
        !AGPUtils::stringToInt(text, number) || number < 0) {
        maxSize = MAXSIZE_NONE;
        return false;
    }
    maxSize = static_cast<std::uint32_t>(number);
    return true;
}

AGPIppTextField::AGPConstraint AGPIppTextField::parseAGPConstraint(const std::string& text) {
    if (text == "NUMERIC") {
        return NUMERIC;
    }
    if (text == "PASSWORD") {
        return PASSWORD;
    }
    if (text == "PHONENUMBER") {
        return PHONENUMBER;
    }
    if (text == "URL") {
        return URL;
    }
    if (text == "EMAILADDR") {
        return EMAILADDR;
    }
    if (text == "VALIDATE") {
        return VALIDATE;
    }
    return CONSTRAINT_ANY;
}

AGPIppTextField::AGPPassword AGPIppTextField::parseAGPPassword(const std::string& text) {
    return text == "YES" ? PASSWORD_YES : PASSWORD_NO;
}

AGPIppTextField::AGPUneditable AGPIppTextField::parseAGPUneditable(const std::string& text) {
    return text == "YES" ? UNEDITABLE_YES : UNEDITABLE_NO;
}

void AGPIppTextField::initializeElement() {
    createAndInitDisplayElements(true);
}

void AGPIppTextField::reDisplayElement() {
    createAndInitDisplayElements(false);
}

void AGPIppTextField::hideElement() {
    if (mTextField != nullptr) {
        mText = mTextField->getString();
        if (mTextField->getForm() == nullptr) {
            delete mTextField;
        }
    }
    mTextField = nullptr;
}

void AGPIppTextField::createAndInitDisplayElements(bool fromDocument) {
    if (mTextField != nullptr && mTextField->getForm() == nullptr) {
        delete mTextField;
    }
    AGPCommonBase* labelChild = getChildByType(AGPObjectTypeInfo::ti_Label);
    const std::string label = labelChild != nullptr ? labelChild->getContent() : std::string();
    DisplayAPI::TextField::FieldType type = DisplayAPI::TextField::ANY;
    if (mConstraint == NUMERIC || mConstraint == PHONENUMBER) {
        type = DisplayAPI::TextField::NUMERIC;
    } else if (mConstraint == PASSWORD || mConstraint == VALIDATE) {
        type = DisplayAPI::TextField::PASSWORD;
    }
    mTextField = new DisplayAPI::TextField(nullptr, 0, nullptr, type, false);
    mTextField->setLabel(label);
    const std::string text = fromDocument ? getTextFromXml() : mText;
    mTextField->setString(text);
    if (mUneditable == UNEDITABLE_YES) {
        mTextField->setReadOnlyMode(true);
    }
    mTextField->setMaxFieldLength(mMaxSize == MAXSIZE_NONE ? -1
                                  : mMaxSize > 0x7FFFFFFFu ? 0x7FFFFFFF
                                                           : static_cast<int>(mMaxSize));
    mTextField->setOwnerId(mAGPId);
}

// Both are made only when asked for before a document gave them: most fields give them.
AGPDefault* AGPIppTextField::getAGPDefault() {
    if (mDefault == nullptr) {
        mDefault = newParseFailedDefault();
    }
    return mDefault;
}

AGPKey* AGPIppTextField::getAGPKey() {
    if (mKey == nullptr) {
        mKey = new AGPKey("null");
    }
    return mKey;
}

std::string AGPIppTextField::getTextFromXml() {
    std::string text;
    const AGPDefault& given = *getAGPDefault();
    if (AGPObjectPool::isPooled(given, AGPObjectPool::getAGPDefault_TEXT(), "TEXT")) {
        AGPCommonBase* child = getChildByType(AGPObjectTypeInfo::ti_Text);
        if (child != nullptr) {
            text = child->getContent();
        }
    } else if (AGPObjectPool::isPooled(given, AGPObjectPool::getAGPDefault_PHONENUMBER(), "PHONENUMBER")) {
        AGPDataObserver* configuration = AGPPhoneletManager::findAGPDataObserver();
        if (configuration != nullptr) {
            text = configuration->getSubscriberNumber();
        }
    }
    mText = text;
    return text;
}

std::string AGPIppTextField::getDisplayItemsValue() {
    return mTextField != nullptr ? mTextField->getString() : std::string();
}

bool AGPIppTextField::isValidValueEntered() {
    if (mConstraint != NUMERIC) {
        return true;
    }
    const std::string text = getDisplayItemsValue();
    int number = 0;
    return text.find_first_not_of("0123456789") == std::string::npos && AGPUtils::stringToInt(text, number);
}

DisplayAPI::Item* AGPIppTextField::getDisplayItem() {
    return mTextField;
}

void AGPIppTextField::setContextMenuArrowIcon(bool shown) {
    if (mTextField != nullptr) {
        mTextField->setContextMenuArrowIcon(shown);
        mTextField->setInformAppOnOk(shown);
    }
}

void AGPIppTextField::performCancel() {
    const std::string text = getTextFromXml();
    if (mTextField != nullptr) {
        mTextField->setString(text);
    }
}

void AGPIppTextField::commit() {
    if (mTextField != nullptr) {
        mText = mTextField->getString();
    }
}

void AGPIppTextField::rollback() {
    if (mTextField != nullptr) {
        mTextField->setString(mText);
    }
}

void AGPIppTextField::processMessage(AGPMessage& message) {
    if (message.type != AGPMessage::Command_Save && message.type != AGPMessage::Command_Item_state_changed) {
        return;
    }
    if (mTextField == nullptr) {
        return;
    }
    if (isValidValueEntered()) {
        commit();
        return;
    }
    AGPCommonBase* owner = getParent();
    if (owner != nullptr && owner->getAGPObjectType() == AGPObjectTypeInfo::ti_IppItem) {
        owner = owner->getParent();
    }
    if (owner == nullptr || owner->getAGPObjectType() != AGPObjectTypeInfo::ti_IppForm) {
        AGP_LOG(6, "AGPIppTextField: invalid entry outside a form");
        return;
    }
    const Translator* translator = AGPPhoneletManager::getTranslator();
    static_cast<AGPIppForm*>(owner)->showAlert(
        TranslationInfo("alert.numberformat.title", translator).getText(),
        TranslationInfo("alert.numberformat.msg", translator).getText(), this, message.bringToFront);
}

void AGPIppTextField::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    const std::string key =
        mKey == nullptr || mKey->getValueText().empty() ? std::string("null") : mKey->getValueText();
    keyValues.insert(std::make_pair(key, getDisplayItemsValue()));
}
