// An empty line between the items of a form.
#include "AGPIppSpacer.h"

#include <string_view>

#include "AGPUtils.h"
#include "display/TextField.h"

using namespace std::string_view_literals;

AGPIppSpacer::AGPIppSpacer()
    : mNewLine(NEWLINE_NOT_GIVEN), mNewLineGiven(false), mHeight(0), mWidth(0), mTextField(nullptr) {
    registerElement();
}

AGPIppSpacer::~AGPIppSpacer() {
    unregisterElement();
    releaseWidget();
}

bool AGPIppSpacer::addAttribute(std::string& name, std::string& value) {
    if (name == "NewLine"sv) {
        mNewLine = parseAGPNewLine(value);
        mNewLineGiven = mNewLine != NEWLINE_NOT_GIVEN;
        return mNewLineGiven;
    }
    if (name == "Height"sv) {
        mHeight = parseAGPSize(value);
        return true;
    }
    if (name == "Width"sv) {
        mWidth = parseAGPSize(value);
        return true;
    }
    return false;
}

AGPIppSpacer::AGPNewLine AGPIppSpacer::parseAGPNewLine(const std::string& text) {
    if (text == "NEWLINE_AFTER") {
        return NEWLINE_AFTER;
    }
    if (text == "NEWLINE_BEFORE") {
        return NEWLINE_BEFORE;
    }
    if (text == "NEWLINE_BEF_AFT") {
        return NEWLINE_BEF_AFT;
    }
    return NEWLINE_NOT_GIVEN;
}

std::uint32_t AGPIppSpacer::parseAGPSize(const std::string& text) {
    int number = 0;
    if (!AGPUtils::stringToInt(text, number) || number < 0) {
        return 0;
    }
    return static_cast<std::uint32_t>(number);
}

void AGPIppSpacer::hideElement() {
    releaseWidget();
}

void AGPIppSpacer::releaseWidget() {
    if (mTextField != nullptr && mTextField->getForm() == nullptr) {
        delete mTextField;
    }
    mTextField = nullptr;
}

// The size attributes are kept only: every spacer is the same empty line that never takes focus.
void AGPIppSpacer::createAndInitDisplayElements() {
    releaseWidget();
    mTextField = new DisplayAPI::TextField(nullptr, 0, nullptr, DisplayAPI::TextField::ANY, false);
    mTextField->setString("");
    mTextField->setLabel(std::string());
    mTextField->setReadOnlyMode(true);
    mTextField->setSelectable(false);
}

DisplayAPI::Item* AGPIppSpacer::getDisplayItem() {
    return mTextField;
}
