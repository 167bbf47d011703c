// A form item that shows and edits a date, a time or both in the phone's formats.
#include "AGPIppDateField.h"

#include <string_view>

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPIppDateField.cpp"

#include "AGPDateKey.h"
#include "AGPGUIHandler.h"
#include "AGPLog.h"
#include "AGPMessage.h"
#include "AGPObjectPool.h"
#include "AGPPhoneletManager.h"
#include "AGPTimeKey.h"
#include "display/TextField.h"

using namespace std::string_view_literals;

namespace {

// Taken while the widget pointer changes; without a GUI handler there is nobody to race with.
std::unique_lock<std::recursive_mutex> lockAgainstFormatChanges() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr ? gui->lockDateTimeListeners() : std::unique_lock<std::recursive_mutex>();
}

} // namespace

AGPIppDateField::AGPIppDateField()
    : mLabelCount(0, 1), mTimezoneCount(0, 1), mDateCount(0, 1), mTimeCount(0, 1), mMode(DATE_AND_TIME),
      mDefault(DEFAULT_NONE), mDateKey(new AGPDateKey("null")), mTimeKey(new AGPTimeKey("null")),
      mTextField(nullptr) {
    registerElement();
    if (AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler()) {
        gui->addDateTimeChangeListener(this);
    }
}

AGPIppDateField::~AGPIppDateField() {
    unregisterElement();
    if (AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler()) {
        gui->removeDateTimeChangeListener(this);
    }
    forgetWidget();
    delete mDateKey;
    delete mTimeKey;
}

bool AGPIppDateField::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_Label:
        return addCountedChild(mLabelCount, child);
    case AGPObjectTypeInfo::ti_Timezone:
        return addCountedChild(mTimezoneCount, child);
    case AGPObjectTypeInfo::ti_Date:
        return addCountedChild(mDateCount, child);
    case AGPObjectTypeInfo::ti_Time:
        return addCountedChild(mTimeCount, child);
    default:
        return false;
    }
}

bool AGPIppDateField::addAttribute(std::string& name, std::string& value) {
    if (name == "Mode"sv) {
        mMode = parseAGPMode(value);
        return true;
    }
    if (name == "Default"sv) {
        mDefault = parseAGPDefault(value);
        return true;
    }
    if (name == "DateKey"sv) {
        delete mDateKey;
        mDateKey = AGPDateKey::parseAGPDateKey(value);
        if (!AGPObjectPool::isPooled(*mDateKey, AGPObjectPool::getAGPDateKey_PARSE_FAILED())) {
            return true;
        }
        delete mDateKey;
        mDateKey = new AGPDateKey("null");
        return false;
    }
    if (name == "TimeKey"sv) {
        delete mTimeKey;
        mTimeKey = AGPTimeKey::parseAGPTimeKey(value);
        if (!AGPObjectPool::isPooled(*mTimeKey, AGPObjectPool::getAGPTimeKey_PARSE_FAILED())) {
            return true;
        }
        delete mTimeKey;
        mTimeKey = new AGPTimeKey("null");
        return false;
    }
    return false;
}

bool AGPIppDateField::isValid() {
    return mLabelCount.isCountValid() && mTimezoneCount.isCountValid() && mDateCount.isCountValid() &&
           mTimeCount.isCountValid();
}

AGPIppDateField::AGPMode AGPIppDateField::parseAGPMode(const std::string& text) {
    return text == "DATE" ? DATE : text == "TIME" ? TIME : DATE_AND_TIME;
}

AGPIppDateField::AGPDefault AGPIppDateField::parseAGPDefault(const std::string& text) {
    return text == "MODE" ? MODE : DEFAULT_NONE;
}

AGPDateTimeChangeListenerIfc::AGPDateFormat AGPIppDateField::phoneDateFormat() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr ? gui->getDateFormat() : DATE_FORMAT_UNKNOWN;
}

AGPDateTimeChangeListenerIfc::AGPTimeFormat AGPIppDateField::phoneTimeFormat() {
    AGPGUIHandler* gui = AGPPhoneletManager::findAGPGUIHandler();
    return gui != nullptr ? gui->getTimeFormat() : TIME_FORMAT_UNKNOWN;
}

std::string AGPIppDateField::childContent(AGPObjectType type) {
    AGPCommonBase* child = getChildByType(type);
    return child != nullptr ? child->getContent() : std::string();
}

std::string AGPIppDateField::getText(bool fromDocument) {
    if (mDefault != MODE) {
        return std::string();
    }
    if (!fromDocument) {
        return mSavedText;
    }
    std::string time;
    std::string date;
    if (showsTime()) {
        time = convertTimeFormat(getJustTime_HH_COLLON_MM(childContent(AGPObjectTypeInfo::ti_Time)), HR24,
                                 phoneTimeFormat());
    }
    if (showsDate()) {
        date = convertDateFormat(childContent(AGPObjectTypeInfo::ti_Date), YYYY_DASH_MM_DASH_DD,
                                 phoneDateFormat());
    }
    switch (mMode) {
    case TIME:
        return time;
    case DATE:
        return date;
    case DATE_AND_TIME:
        break;
    }
    return date + " " + time;
}

void AGPIppDateField::initializeElement() {
    createAndInitDisplayElements(true);
}

void AGPIppDateField::reDisplayElement() {
    createAndInitDisplayElements(false);
    mSavedText.clear();
}

void AGPIppDateField::createAndInitDisplayElements(bool fromDocument) {
    const auto lock = lockAgainstFormatChanges();
    forgetWidget();
    const DisplayAPI::TextField::FieldType type = mMode == DATE   ? DisplayAPI::TextField::DATE
                                                  : mMode == TIME ? DisplayAPI::TextField::TIME
                                                                  : DisplayAPI::TextField::DATE_TIME;
    mTextField = new DisplayAPI::TextField(nullptr, 0, nullptr, type, false);
    mTextField->setString(getText(fromDocument));
    mTextField->setLabel(childContent(AGPObjectTypeInfo::ti_Label));
    mTextField->setOwnerId(mAGPId);
}

void AGPIppDateField::hideElement() {
    const auto lock = lockAgainstFormatChanges();
    if (mTextField != nullptr) {
        mSavedText = mTextField->getString();
    }
    forgetWidget();
}

// A widget that never entered a form is still ours; one in a form goes with the form widget.
void AGPIppDateField::forgetWidget() {
    if (mTextField != nullptr && mTextField->getForm() == nullptr) {
        delete mTextField;
    }
    mTextField = nullptr;
}

std::string AGPIppDateField::getDisplayItemsValue() {
    return mTextField != nullptr ? mTextField->getString() : std::string();
}

DisplayAPI::Item* AGPIppDateField::getDisplayItem() {
    return mTextField;
}

void AGPIppDateField::setContextMenuArrowIcon(bool shown) {
    if (mTextField != nullptr) {
        mTextField->setContextMenuArrowIcon(shown);
        mTextField->setInformAppOnOk(shown);
    }
}

void AGPIppDateField::performCancel() {
    if (mTextField != nullptr) {
        mTextField->setString(getText(true));
    }
}

void AGPIppDateField::processMessage(AGPMessage& message) {
    if (message.type == AGPMessage::Command_Item_state_changed) {
        const auto lock = lockAgainstFormatChanges();
        timeFormatChanged(HR24, phoneTimeFormat());
    }
}

void AGPIppDateField::dateFormatChanged(AGPDateFormat oldFormat, AGPDateFormat newFormat) {
    if (mTextField != nullptr && showsDate()) {
        mTextField->setString(convertDateFormat(mTextField->getString(), oldFormat, newFormat));
    }
}

void AGPIppDateField::timeFormatChanged(AGPTimeFormat oldFormat, AGPTimeFormat newFormat) {
    if (mTextField != nullptr && showsTime()) {
        mTextField->setString(convertTimeFormat(mTextField->getString(), oldFormat, newFormat));
    }
}

void AGPIppDateField::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    const std::string text = getDisplayItemsValue();
    if (showsTime()) {
        const std::string time =
            getJustTime_HH_COLLON_MM_COLLON_SS_DOT_MSS(convertTimeFormat(text, phoneTimeFormat(), HR24));
        if (!time.empty()) {
            keyValues.insert(std::make_pair(mTimeKey->getValueText(), time));
        }
    }
    if (showsDate()) {
        std::string date = convertDateFormat(text, phoneDateFormat(), YYYY_DASH_MM_DASH_DD);
        if (mMode == DATE_AND_TIME) {
            date = getJustDate_YYYY_DASH_MM_DASH_DD(date);
        }
        if (!date.empty()) {
            keyValues.insert(std::make_pair(mDateKey->getValueText(), date));
        }
    }
}
