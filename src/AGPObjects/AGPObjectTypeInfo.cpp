// Type names of the element types.
#include "AGPObjectTypeInfo.h"

namespace {

const std::string kTypeNames[] = {
    "ti_Encapsulation_s",
    "ti_Encapsulation_ui",
    "ti_IppPhone",
    "ti_IppDisplay",
    "ti_IppScreen",
    "ti_IppAction",
    "ti_IppAlert",
    "ti_IppButton",
    "ti_IppChoiceGroup",
    "ti_IppCommand",
    "ti_IppDateField",
    "ti_IppForm",
    "ti_IppGauge",
    "ti_IppHidden",
    "ti_IppImageItem",
    "ti_IppItem",
    "ti_IppKey",
    "ti_IppList",
    "ti_IppPhoneNumber",
    "ti_IppPlayer",
    "ti_IppSpacer",
    "ti_IppStringItem",
    "ti_IppTable",
    "ti_IppTextBox",
    "ti_IppTextField",
    "ti_IppTicker",
    "ti_IppTone",
    "ti_AltText",
    "ti_Cell",
    "ti_CellLine",
    "ti_CellText",
    "ti_Date",
    "unknown_type",
    "ti_Image",
    "ti_Initial",
    "ti_Label",
    "ti_Maximum",
    "ti_Option",
    "ti_OptionText",
    "ti_Row",
    "ti_ScreenID",
    "ti_Text",
    "ti_Time",
    "ti_Timezone",
    "ti_Title",
    "ti_Url",
    "ti_Value",
    "ti_DateKey",
    "ti_Default",
    "ti_FColor",
    "ti_Key",
    "ti_SFColor",
    "ti_STColor",
    "ti_TColor",
    "ti_TimeKey",
    "ti_UrlKey",
    "ti_colourType",
    "ti_gaugeTimeType",
    "ti_imagePath",
    "ti_timeZoneType",
};
const std::string kUnknownType = "unknown_type";

} // namespace

const std::string& AGPObjectTypeInfo::getTypeNameRef(AGPObjectType type) {
    if (type < 0 || type >= ti_NoType) {
        return kUnknownType;
    }
    return kTypeNames[type];
}

std::string AGPObjectTypeInfo::getTypeName(AGPObjectType type) {
    return getTypeNameRef(type);
}
