// One entry of a list or choice group: its pair, initial selection, texts and widget row.
#include "AGPOption.h"

#include "AGPIppPhoneNumber.h"

#define AGP_LOG_MODULE "AGPObject"
#define AGP_LOG_SOURCE "./src/AGPObjects/AGPOption.cpp"

#include <string_view>
#include <vector>

#include "AGPFColor.h"
#include "AGPImage.h"
#include "AGPIppChoiceGroup.h"
#include "AGPIppList.h"
#include "AGPKey.h"
#include "AGPObjectPool.h"
#include "AGPOptionText.h"
#include "AGPSFColor.h"
#include "AGPSTColor.h"
#include "AGPTColor.h"
#include "AGPUtils.h"
#include "AGPValue.h"
#include "display/Image.h"
#include "display/ListItem.h"

using namespace std::string_view_literals;

namespace {} // namespace

AGPOption::AGPOption()
    : mOptionTextCount(1, 3), mImageCount(0, 1), mID(0), mSelected(SELECTED_NOT_GIVEN), mSelectedGiven(false),
      mKey(nullptr), mKeyGiven(false), mValue(nullptr), mValueGiven(false), mFColor(nullptr),
      mTColor(nullptr), mSFColor(nullptr), mSTColor(nullptr), mListItem(nullptr), mListItemTaken(false),
      mImage(nullptr), mGray(false), mParentType(AGPObjectTypeInfo::ti_NoType) {
    registerElement();
}

AGPOption::~AGPOption() {
    unregisterElement();
    deleteDisplayElements();
    delete mKey;
    delete mValue;
    delete mFColor;
    delete mTColor;
    delete mSFColor;
    delete mSTColor;
}

bool AGPOption::addChild(AGPCommonBase& child) {
    switch (child.getAGPObjectType()) {
    case AGPObjectTypeInfo::ti_OptionText:
        return addCountedChild(mOptionTextCount, child);
    case AGPObjectTypeInfo::ti_Image:
        return addCountedChild(mImageCount, child);
    default:
        return false;
    }
}

bool AGPOption::addAttribute(std::string& name, std::string& value) {
    if (name == "Key"sv) {
        delete mKey;
        mKey = AGPKey::parseAGPKey(value);
        mKeyGiven = true;
        return !AGPObjectPool::isPooled(*mKey, AGPObjectPool::getAGPKey_PARSE_FAILED());
    }
    if (name == "Value"sv) {
        delete mValue;
        mValue = AGPValue::parseAGPValue(value);
        mValueGiven = true;
        return !AGPObjectPool::isPooled(*mValue, AGPObjectPool::getAGPValue_PARSE_FAILED());
    }
    if (name == "Selected"sv) {
        mSelected = value == "TRUE" ? SELECTED_TRUE : value == "FALSE" ? SELECTED_FALSE : SELECTED_NOT_GIVEN;
        mSelectedGiven = mSelected != SELECTED_NOT_GIVEN;
        return mSelectedGiven;
    }
    if (name == "ID"sv) {
        int number = 0;
        mID = AGPUtils::stringToInt(value, number) && number >= 0 ? static_cast<std::uint32_t>(number) : 0;
        return true;
    }
    if (name == "FColor"sv) {
        return AGPObjectPool::replaceColor(mFColor, value, &AGPFColor::parseAGPFColor,
                                           AGPObjectPool::getAGPFColor_PARSE_FAILED());
    }
    if (name == "TColor"sv) {
        return AGPObjectPool::replaceColor(mTColor, value, &AGPTColor::parseAGPTColor,
                                           AGPObjectPool::getAGPTColor_PARSE_FAILED());
    }
    if (name == "SFColor"sv) {
        return AGPObjectPool::replaceColor(mSFColor, value, &AGPSFColor::parseAGPSFColor,
                                           AGPObjectPool::getAGPSFColor_PARSE_FAILED());
    }
    if (name == "STColor"sv) {
        return AGPObjectPool::replaceColor(mSTColor, value, &AGPSTColor::parseAGPSTColor,
                                           AGPObjectPool::getAGPSTColor_PARSE_FAILED());
    }
    return false;
}

std::string AGPOption::getContent() {
    std::vector<AGPCommonBase*> texts;
    getChildrenByType(AGPObjectTypeInfo::ti_OptionText, texts);
    std::string joined;
    for (size_t i = 0; i < texts.size(); ++i) {
        if (i > 0) {
            joined += "|";
        }
        joined += texts[i]->getContent();
    }
    return joined;
}

std::string AGPOption::getOptionText() {
    AGPCommonBase* text = getChildByType(AGPObjectTypeInfo::ti_OptionText);
    return text != nullptr ? text->getContent() : std::string("no text");
}

bool AGPOption::isValid() {
    return mSelectedGiven && mKeyGiven && mValueGiven && isCountValidAGPOptionText() && isCountValidImage();
}

void AGPOption::initializeElement() {
    createDisplayElements();
}

void AGPOption::reDisplayElement() {
    createDisplayElements();
}

void AGPOption::hideElement() {
    deleteDisplayElements();
}

void AGPOption::createDisplayElements() {
    deleteDisplayElements();
    mParentType = mParent != nullptr ? mParent->getAGPObjectType() : AGPObjectTypeInfo::ti_NoType;
    if (mParentType == AGPObjectTypeInfo::ti_IppChoiceGroup) {
        // The group's widget takes the picture there is now; a later download reaches its entry
        // through imageDownloaded.
        if (AGPImage* image = getImage()) {
            image->setImageStateListener(this);
        }
        // A choice group takes its picture from the last option text whose phone number has one.
        std::vector<AGPCommonBase*> texts;
        getChildrenByType(AGPObjectTypeInfo::ti_OptionText, texts);
        for (AGPCommonBase* text : texts) {
            setPhoneNumberImage(static_cast<AGPOptionText*>(text));
        }
        return;
    }
    if (mParentType != AGPObjectTypeInfo::ti_IppList) {
        return;
    }
    mListItem = new DisplayAPI::ListItem();
    mListItem->setOwnerId(mAGPId);
    mListItemTaken = false;
    AGPImage* image = getImage();
    if (image != nullptr) {
        image->setImageStateListener(this);
        if (image->isDownloadPending()) {
            mListItem->reserveSpaceForImage(true);
        }
    }

    const bool threeColumns = static_cast<AGPIppList*>(mParent)->getAGPColumns() == AGPIppList::COLUMNS_3;
    const size_t wanted = threeColumns ? 3 : 1;
    std::vector<AGPCommonBase*> texts;
    getChildrenByType(AGPObjectTypeInfo::ti_OptionText, texts);
    const size_t used = std::min(wanted, texts.size());
    std::string text;
    mGray = false;
    for (size_t i = 0; i < used; ++i) {
        auto* optionText = static_cast<AGPOptionText*>(texts[i]);
        if (i > 0) {
            text += "|";
        }
        text += optionText->getContent();
        if (optionText->getAGPState() == AGPOptionText::GRAY) {
            mGray = true;
        }
    }
    if (threeColumns) {
        text += used < 2 ? "||" : used == 2 ? "|" : "";
    }
    // The entry's picture: the Image child's if there is one, else the first text's phone-number
    // picture.
    DisplayAPI::Image* picture = getDisplayAPIImage();
    if (picture == nullptr) {
        setPhoneNumberImage(texts.empty() ? nullptr : static_cast<AGPOptionText*>(texts[0]));
        picture = mImage;
    }
    if (picture != nullptr) {
        mListItem->setImage(picture);
    }
    mListItem->setText(text);
    mListItem->setActiveFontColour(!mGray);
}

void AGPOption::setPhoneNumberImage(AGPOptionText* text) {
    AGPIppPhoneNumber* number = text != nullptr ? text->getPhoneNumber() : nullptr;
    const std::string path = number != nullptr ? number->getImagePath() : std::string();
    if (!path.empty()) {
        delete mImage;
        mImage = new DisplayAPI::Image(path);
    }
}

DisplayAPI::ListItem* AGPOption::takeListItem() {
    mListItemTaken = mListItem != nullptr;
    return mListItem;
}

void AGPOption::deleteDisplayElements() {
    delete mImage;
    mImage = nullptr;
    if (!mListItemTaken) {
        delete mListItem;
    }
    mListItem = nullptr;
    mListItemTaken = false;
}

AGPImage* AGPOption::getImage() {
    return static_cast<AGPImage*>(getChildByType(AGPObjectTypeInfo::ti_Image));
}

DisplayAPI::Image* AGPOption::getDisplayAPIImage() {
    AGPImage* image = getImage();
    if (image != nullptr && image->getDisplayAPI_Image() != nullptr) {
        return image->getDisplayAPI_Image();
    }
    return mImage;
}

void AGPOption::imageDownloaded(unsigned long agpId) {
    AGPImage* image = getImage();
    if (image == nullptr || image->getAGPObjectID() != agpId || image->getDisplayAPI_Image() == nullptr) {
        return;
    }
    if (mParentType == AGPObjectTypeInfo::ti_IppChoiceGroup && mParent != nullptr) {
        static_cast<AGPIppChoiceGroup*>(mParent)->setOptionPicture(this, image->getDisplayAPI_Image());
    } else if (mListItem != nullptr) {
        mListItem->setImage(image->getDisplayAPI_Image());
    }
}

AGPKey* AGPOption::getAGPKey() {
    if (mKey == nullptr) {
        mKey = new AGPKey("null");
    }
    return mKey;
}

AGPValue* AGPOption::getAGPValue() {
    if (mValue == nullptr) {
        mValue = new AGPValue("");
    }
    return mValue;
}

void AGPOption::gatherKeyValues(std::multimap<std::string, std::string>& keyValues) {
    keyValues.insert(std::make_pair(getAGPKey()->getValueText(), getAGPValue()->getValueText()));
}
