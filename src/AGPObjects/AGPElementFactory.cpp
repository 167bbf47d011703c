// The element factory, AGPCommonBase::getInstanceFor: XML element name to a new, registered element.
#include <string_view>
#include <unordered_map>

#include "AGPAltText.h"
#include "AGPCommonBase.h"
#include "AGPDate.h"
#include "AGPDateKey.h"
#include "AGPDefault.h"
#include "AGPFColor.h"
#include "AGPInitial.h"
#include "AGPIppAction.h"
#include "AGPIppAlert.h"
#include "AGPIppCommand.h"
#include "AGPIppDisplay.h"
#include "AGPIppForm.h"
#include "AGPIppHidden.h"
#include "AGPIppItem.h"
#include "AGPIppList.h"
#include "AGPIppScreen.h"
#include "AGPIppTextBox.h"
#include "AGPIppTextField.h"
#include "AGPKey.h"
#include "AGPLabel.h"
#include "AGPMaximum.h"
#include "AGPOption.h"
#include "AGPOptionText.h"
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
        {"IppDisplay", create<AGPIppDisplay>},
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
        {"Option", create<AGPOption>},
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
    };
    return table;
}

} // namespace

AGPCommonBase* AGPCommonBase::getInstanceFor(std::string& name) {
    const auto& table = elementTable();
    auto found = table.find(name);
    return found == table.end() ? nullptr : found->second();
}
