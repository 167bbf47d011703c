// A form item that shows and edits a date, a time or both in the phone's formats.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "AGPCommonBase.h"
#include "AGPDateTimeChangeListenerIfc.h"
#include "AGPDisplayItemIfc.h"
#include "AGPKeyValueProviderIfc.h"

class AGPDateKey;
class AGPTimeKey;

namespace DisplayAPI {
class TextField;
}

// Registered as a date/time listener of the GUI handler for its whole life. Its widget belongs to
// the form widget once appended; it is created and forgotten on the field's queue thread under
// the GUI handler's date/time listener lock, so a format change on the host's thread never
// reaches a widget that is being deleted.
class AGPIppDateField : public AGPCommonBase,
                        public AGPDisplayItemIfc,
                        public AGPKeyValueProviderIfc,
                        public AGPDateTimeChangeListenerIfc {
public:
    enum AGPMode : std::int32_t { DATE = 0, TIME = 1, DATE_AND_TIME = 2 };
    enum AGPDefault : std::int32_t { DEFAULT_NONE = 0, MODE = 1 };

    AGPIppDateField();
    AGPIppDateField(const AGPIppDateField&) = delete;
    AGPIppDateField& operator=(const AGPIppDateField&) = delete;
    ~AGPIppDateField() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppDateField; }
    bool addChild(AGPCommonBase& child) override;
    bool addAttribute(std::string& name, std::string& value) override;
    bool isValid() override;
    void initializeElement() override;
    // An edit finished: a time typed in 24 hours is shown in the phone's format.
    void processMessage(AGPMessage& message) override;
    void hideElement() override;
    void reDisplayElement() override;

    DisplayAPI::Item* getDisplayItem() override;
    void setContextMenuArrowIcon(bool shown) override;
    void performCancel() override;

    // The time pair, then the date pair, each only when its value is not empty.
    void gatherKeyValues(std::multimap<std::string, std::string>& keyValues) override;

    void dateFormatChanged(AGPDateFormat oldFormat, AGPDateFormat newFormat) override;
    void timeFormatChanged(AGPTimeFormat oldFormat, AGPTimeFormat newFormat) override;

    // The text the widget starts with: from the document in the phone's formats, or the text
    // saved when the field was hidden.
    std::string getText(bool fromDocument);
    void createAndInitDisplayElements(bool fromDocument);
    // The widget's text, empty without widget.
    std::string getDisplayItemsValue();

    AGPMode getAGPMode() const { return mMode; }
    void setAGPMode(AGPMode mode) { mMode = mode; }
    AGPDefault getAGPDefault() const { return mDefault; }
    void setAGPDefault(AGPDefault value) { mDefault = value; }
    AGPDateKey* getAGPDateKey() const { return mDateKey; }
    AGPTimeKey* getAGPTimeKey() const { return mTimeKey; }

    static AGPMode parseAGPMode(const std::string& text);
    static AGPDefault parseAGPDefault(const std::string& text);

private:
    bool showsDate() const { return mMode != TIME; }
    bool showsTime() const { return mMode != DATE; }
    static AGPDateFormat phoneDateFormat();
    static AGPTimeFormat phoneTimeFormat();
    std::string childContent(AGPObjectType type);
    void forgetWidget();

    AGPChildCount mLabelCount;
    AGPChildCount mTimezoneCount;
    AGPChildCount mDateCount;
    AGPChildCount mTimeCount;
    AGPMode mMode;
    AGPDefault mDefault;
    AGPDateKey* mDateKey;
    AGPTimeKey* mTimeKey;
    DisplayAPI::TextField* mTextField;
    std::string mSavedText;
};
