// A form item showing a value in a range, moved with Left and Right unless it follows a timer.
#pragma once

#include <string>

#include "display/Item.h"

class TranslationInfo;

namespace DisplayAPI {

// Values are given and read as decimal text. Text that is not a number leaves the value as it
// was; the value is kept inside the range.
class SliderItem : public Item {
public:
    // `label` may be null.
    explicit SliderItem(const TranslationInfo* label);
    ~SliderItem() override;

    void setMinValue(const std::string& value);
    void setMaxValue(const std::string& value);
    void setValue(const std::string& value);
    // The step of one Left or Right.
    void setInterval(const std::string& value);
    std::string getValue() const;
    // With true the slider follows the application (a timer), not the user's keys.
    virtual void setAutomatic(bool automatic);
    bool isAutomatic() const;

    const char* kind() const override { return "slider"; }

    // ---- Used by the library itself. ----
    bool itemKey(Key key) override;

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    void clampValue();

    long mMin = 0;
    long mMax = 100;
    long mValue = 0;
    long mInterval = 1;
    bool mAutomatic = false;
};

} // namespace DisplayAPI
