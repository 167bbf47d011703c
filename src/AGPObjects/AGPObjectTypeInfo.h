// The element types of a document, one per element class, with their type names.
#pragma once

#include <cstdint>
#include <string>

class AGPObjectTypeInfo {
public:
    enum AGPObjectType : std::int32_t {
        ti_Encapsulation_s = 0,
        ti_Encapsulation_ui = 1,
        ti_IppPhone = 2,
        ti_IppDisplay = 3,
        ti_IppScreen = 4,
        ti_IppAction = 5,
        ti_IppAlert = 6,
        ti_IppButton = 7,
        ti_IppChoiceGroup = 8,
        ti_IppCommand = 9,
        ti_IppDateField = 10,
        ti_IppForm = 11,
        ti_IppGauge = 12,
        ti_IppHidden = 13,
        ti_IppImageItem = 14,
        ti_IppItem = 15,
        ti_IppKey = 16,
        ti_IppList = 17,
        ti_IppPhoneNumber = 18,
        ti_IppPlayer = 19,
        ti_IppSpacer = 20,
        ti_IppStringItem = 21,
        ti_IppTable = 22,
        ti_IppTextBox = 23,
        ti_IppTextField = 24,
        ti_IppTicker = 25,
        ti_IppTone = 26,
        ti_AltText = 27,
        ti_Cell = 28,
        ti_CellLine = 29,
        ti_CellText = 30,
        ti_Date = 31,
        ti_Header = 32,
        ti_Image = 33,
        ti_Initial = 34,
        ti_Label = 35,
        ti_Maximum = 36,
        ti_Option = 37,
        ti_OptionText = 38,
        ti_Row = 39,
        ti_ScreenID = 40,
        ti_Text = 41,
        ti_Time = 42,
        ti_Timezone = 43,
        ti_Title = 44,
        ti_Url = 45,
        ti_Value = 46,
        ti_DateKey = 47,
        ti_Default = 48,
        ti_FColor = 49,
        ti_Key = 50,
        ti_SFColor = 51,
        ti_STColor = 52,
        ti_TColor = 53,
        ti_TimeKey = 54,
        ti_UrlKey = 55,
        ti_colourType = 56,
        ti_gaugeTimeType = 57,
        ti_imagePath = 58,
        ti_timeZoneType = 59,
        // One past the last element type: stands for "no type".
        ti_NoType = 60
    };

    // The enumerator's name ("ti_IppForm"); "unknown_type" for headers and for 60 and above.
    static std::string getTypeName(AGPObjectType type);
    // The same text without a copy, for the registry's statistics.
    static const std::string& getTypeNameRef(AGPObjectType type);
};
