// The root element of every document: between one and five screens.
#include "AGPIppDisplay.h"

#include <string_view>

#include "AGPUtils.h"

using namespace std::string_view_literals;

namespace {

// A missing, bad or negative screen number means "not given".
bool parseScreenNumber(const std::string& text, std::int32_t& out) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        out = -1;
        return false;
    }
    out = number;
    return true;
}

} // namespace

AGPIppDisplay::AGPIppDisplay() : mIppScreenCount(1, 5), mInitialScreen(-1), mUpdateScreen(-1) {
    registerElement();
}

AGPIppDisplay::~AGPIppDisplay() {
    unregisterElement();
}

bool AGPIppDisplay::addChild(AGPCommonBase& child) {
    if (child.getAGPObjectType() == AGPObjectTypeInfo::ti_IppScreen) {
        return addAGPIppScreen(child);
    }
    return false;
}

bool AGPIppDisplay::addAttribute(std::string& name, std::string& value) {
    if (name == "InitialScreen"sv) {
        return parseScreenNumber(value, mInitialScreen);
    }
    if (name == "UpdateScreen"sv) {
        return parseScreenNumber(value, mUpdateScreen);
    }
    return false;
}
