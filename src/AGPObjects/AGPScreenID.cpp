// The number of a screen, by which commands and lists name the screen to show.
#include "AGPScreenID.h"

#include "AGPUtils.h"

bool AGPScreenID::addContent(std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return false;
    }
    mScreenID = number;
    return true;
}
