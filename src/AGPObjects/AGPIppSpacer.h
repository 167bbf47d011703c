// An empty line between the items of a form.
#pragma once

#include <cstdint>

#include "AGPCommonBase.h"
#include "AGPDisplayItemIfc.h"

namespace DisplayAPI {
class TextField;
}

// The widget lives from initialization (or redisplay) to hiding. Once appended it belongs to
// the form widget; one that never entered a form is deleted here.
class AGPIppSpacer : public AGPCommonBase, public AGPDisplayItemIfc {
public:
    enum AGPNewLine : std::int32_t {
        NEWLINE_AFTER = 0,
        NEWLINE_BEFORE = 1,
        NEWLINE_BEF_AFT = 2,
        NEWLINE_NOT_GIVEN = 3
    };

    AGPIppSpacer();
    AGPIppSpacer(const AGPIppSpacer&) = delete;
    AGPIppSpacer& operator=(const AGPIppSpacer&) = delete;
    ~AGPIppSpacer() override;

    AGPObjectType getAGPObjectType() override { return AGPObjectTypeInfo::ti_IppSpacer; }
    bool addAttribute(std::string& name, std::string& value) override;
    // Valid exactly when a known "NewLine" was given.
    bool isValid() override { return mNewLineGiven; }
    void initializeElement() override { createAndInitDisplayElements(); }
    void reDisplayElement() override { createAndInitDisplayElements(); }
    void hideElement() override;

    DisplayAPI::Item* getDisplayItem() override;

    AGPNewLine getAGPNewLine() const { return mNewLine; }
    std::uint32_t getAGPHeight() const { return mHeight; }
    std::uint32_t getAGPWidth() const { return mWidth; }
    static AGPNewLine parseAGPNewLine(const std::string& text);
    // Not a number or negative: 0.
    static std::uint32_t parseAGPSize(const std::string& text);

    void createAndInitDisplayElements();

private:
    void releaseWidget();

    AGPNewLine mNewLine;
    bool mNewLineGiven;
    std::uint32_t mHeight;
    std::uint32_t mWidth;
    DisplayAPI::TextField* mTextField;
};
