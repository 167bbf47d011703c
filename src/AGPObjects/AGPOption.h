// One entry of a list or choice group: its pair, initial selection, texts and widget row.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPCommonBase.h"
#include "AGPImageStateListenerIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPOptionText;

class AGPFColor;
class AGPImage;
class AGPKey;
class AGPSFColor;
class AGPSTColor;
class AGPTColor;
class AGPValue;

namespace DisplayAPI {
class Image;
class ListItem;
} // namespace DisplayAPI

class AGPOption : public AGPCommonBase, public AGPKeyValueProviderIfc, public AGPImageStateListenerIfc {
public:
    enum AGPSelected : std::int32_t { SELECTED_TRUE = 0, SELECTED_FALSE = 1, SELECTED_NOT_GIVEN = 2 };

    AGPOption();
    AGPOption(const AGPOption&) = delete;
    AGPOption& operator=(const AGPOption&) = delete;
    ~AGPOption() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_Option; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    // The contents of all option texts joined by "|".
    std::string getContent() override;
    bool isValid() override;
    void initializeElement() override;
    void hideElement() override;
    void reDisplayElement() override;

    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;
    // Shows the Image child's picture on the row once its download completed.
    void imageDownloaded(unsigned long agpId) override;

    // The content of the first option text, or "no text".
    std::string getOptionText();
    AGPImage* getImage();
    // The Image child's picture, else the one the option made itself; null when there is none.
    DisplayAPI::Image* getDisplayAPIImage();
    void deleteDisplayElements();
    // Takes the picture of the text's phone number, when it has one, as the entry's picture.
    void setPhoneNumberImage(AGPOptionText* text);

    // The row of a list's option; the list takes it over when it appends it to its widget.
    DisplayAPI::ListItem* getListItem() const { return mListItem; }
    DisplayAPI::ListItem* takeListItem();

    std::uint32_t getAGPID() const { return mID; }
    void setAGPID(std::uint32_t id) { mID = id; }
    AGPSelected getAGPSelected() const { return mSelected; }
    void setAGPSelected(AGPSelected selected) { mSelected = selected; }
    // Key "null" and value "" unless the document gives them; made when first asked for, so that
    // an option given both never makes the defaults.
    AGPKey* getAGPKey();
    AGPValue* getAGPValue();
    // The colours are made only when the document gives them (null otherwise): a list of
    // thousands of options would otherwise carry four default colour objects an option.
    AGPFColor* getAGPFColor() const { return mFColor; }
    AGPTColor* getAGPTColor() const { return mTColor; }
    AGPSFColor* getAGPSFColor() const { return mSFColor; }
    AGPSTColor* getAGPSTColor() const { return mSTColor; }
    bool isGray() const { return mGray; }
    AGPObjectType getParentType() const { return mParentType; }

    bool isCountValidAGPOptionText() { return mOptionTextCount.isCountValid(); }
    bool isCountValidImage() { return mImageCount.isCountValid(); }

private:
    void createDisplayElements();

    AGPChildCount mOptionTextCount;
    AGPChildCount mImageCount;
    std::uint32_t mID;
    AGPSelected mSelected;
    bool mSelectedGiven;
    AGPKey* mKey;
    bool mKeyGiven;
    AGPValue* mValue;
    bool mValueGiven;
    AGPFColor* mFColor;
    AGPTColor* mTColor;
    AGPSFColor* mSFColor;
    AGPSTColor* mSTColor;
    DisplayAPI::ListItem* mListItem;
    // Until the list takes the row over, the option must free it itself.
    bool mListItemTaken;
    DisplayAPI::Image* mImage;
    bool mGray;
    AGPObjectType mParentType;
};
