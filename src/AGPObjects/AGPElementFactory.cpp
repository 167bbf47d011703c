// The element factory, AGPCommonBase::getInstanceFor: XML element name to a new, registered element.
#include <string_view>
#include <unordered_map>

#include "AGPAltText.h"
#include "AGPCommonBase.h"
#include "AGPDate.h"
#include "AGPDateKey.h"
#include "AGPDefault.h"
#include "AGPFColor.h"
#include "AGPImage.h"
#include "AGPInitial.h"
#include "AGPIppAction.h"
#include "AGPIppAlert.h"
#include "AGPIppButton.h"
#include "AGPIppChoiceGroup.h"
#include "AGPIppCommand.h"
#include "AGPIppDateField.h"
// Tables.
#include "AGPCell.h"
#include "AGPCellLine.h"
#include "AGPCellText.h"
#include "AGPHeader.h"
#include "AGPIppDisplay.h"
#include "AGPIppForm.h"
#include "AGPIppGauge.h"
#include "AGPIppHidden.h"
#include "AGPIppImageItem.h"
#include "AGPIppItem.h"
#include "AGPIppKey.h"
#include "AGPIppList.h"
#include "AGPIppPhone.h"
#include "AGPIppPhoneNumber.h"
#include "AGPIppPlayer.h"
#include "AGPIppScreen.h"
#include "AGPIppSpacer.h"
#include "AGPIppStringItem.h"
#include "AGPIppTable.h"
#include "AGPIppTextBox.h"
#include "AGPIppTextField.h"
#include "AGPIppTicker.h"
#include "AGPIppTone.h"
#include "AGPKey.h"
#include "AGPLabel.h"
#include "AGPMaximum.h"
#include "AGPOption.h"
#include "AGPOptionText.h"
#include "AGPRow.h"
#include "AGPSFColor.h"
#include "AGPSTColor.h"
#include "AGPScreenID.h"
#include "AGPTColor.h"
#include "AGPText.h"
#include "AGPTime.h"
#include "AGPTimeKey.h"
#include "AGPTimezone.h"
#include "AGPTitle.h"
#include "AGPUrl.h"
#include "AGPUrlKey.h"
#include "AGPValue.h"
#include "AGPcolourType.h"
#include "AGPgaugeTimeType.h"
#include "AGPimagePath.h"
#include "AGPtimeZoneType.h"
#include "Encapsulation_s.h"
#include "Encapsulation_ui.h"

namespace {

using Creator = AGPCommonBase* (*)();

template <typename Element> AGPCommonBase* create() {
    return new Element();
}

// Names are compared whole and case-sensitively. A name whose element class does not exist is
// absent here, so the parser skips it like any unknown element.
const std::unordered_map<std::string_view, Creator>& elementTable() {
    static const std::unordered_map<std::string_view, Creator> table = {
        {"IppPhone", create<AGPIppPhone>},
        {"IppDisplay", create<AGPIppDisplay>},
        {"IppKey", create<AGPIppKey>},
        {"IppTone", create<AGPIppTone>},
        {"IppPhoneNumber", create<AGPIppPhoneNumber>},
        {"IppScreen", create<AGPIppScreen>},
        {"IppAction", create<AGPIppAction>},
        {"IppCommand", create<AGPIppCommand>},
        {"IppHidden", create<AGPIppHidden>},
        {"IppTextBox", create<AGPIppTextBox>},
        {"IppAlert", create<AGPIppAlert>},
        {"IppList", create<AGPIppList>},
        {"IppForm", create<AGPIppForm>},
        {"IppItem", create<AGPIppItem>},
        {"IppTextField", create<AGPIppTextField>},
        // Choice groups, buttons, gauges, the player and the simple items.
        {"IppChoiceGroup", create<AGPIppChoiceGroup>},
        {"IppButton", create<AGPIppButton>},
        {"IppGauge", create<AGPIppGauge>},
        {"IppPlayer", create<AGPIppPlayer>},
        {"IppStringItem", create<AGPIppStringItem>},
        {"IppSpacer", create<AGPIppSpacer>},
        {"IppImageItem", create<AGPIppImageItem>},
        {"IppTicker", create<AGPIppTicker>},
        {"Option", create<AGPOption>},
        {"Image", create<AGPImage>},
        {"OptionText", create<AGPOptionText>},
        {"Encapsulation_s", create<Encapsulation_s>},
        {"Number", create<Encapsulation_s>},
        {"Encapsulation_ui", create<Encapsulation_ui>},
        {"AltText", create<AGPAltText>},
        {"Date", create<AGPDate>},
        {"Initial", create<AGPInitial>},
        {"Label", create<AGPLabel>},
        {"Maximum", create<AGPMaximum>},
        {"ScreenID", create<AGPScreenID>},
        {"Text", create<AGPText>},
        {"Time", create<AGPTime>},
        {"Timezone", create<AGPTimezone>},
        {"Title", create<AGPTitle>},
        {"Url", create<AGPUrl>},
        {"Value", create<AGPValue>},
        {"DateKey", create<AGPDateKey>},
        {"Default", create<AGPDefault>},
        {"FColor", create<AGPFColor>},
        {"Key", create<AGPKey>},
        {"SFColor", create<AGPSFColor>},
        {"STColor", create<AGPSTColor>},
        {"TColor", create<AGPTColor>},
        {"TimeKey", create<AGPTimeKey>},
        {"UrlKey", create<AGPUrlKey>},
        {"colourType", create<AGPcolourType>},
        {"gaugeTimeType", create<AGPgaugeTimeType>},
        {"imagePath", create<AGPimagePath>},
        {"timeZoneType", create<AGPtimeZoneType>},
        // Date fields.
        {"IppDateField", create<AGPIppDateField>},
        // Tables.
        {"IppTable", create<AGPIppTable>},
        {"Header", create<AGPHeader>},
        {"Row", create<AGPRow>},
        {"Cell", create<AGPCell>},
        {"CellLine", create<AGPCellLine>},
        {"CellText", create<AGPCellText>},
    };
    return table;
}

} // namespace

AGPCommonBase* AGPCommonBase::getInstanceFor(std::string& name) {
    const auto& table = elementTable();
    auto found = table.find(name);
    return found == table.end() ? nullptr : found->second();
}
