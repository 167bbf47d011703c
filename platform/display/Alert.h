// A popup message with a title, a text, an optional picture and commands that dismiss it.
#pragma once

#include <memory>
#include <string>

#include "display/Displayable.h"

namespace DisplayAPI {

class Image;
struct ImageData;

enum AlertType {
    ALERT_ALARM = 1,
    ALERT_CONFIRMATION = 2,
    ALERT_OTHER = 3,
    ALERT_INFO = 4,
    ALERT_WARNING = 5,
};

class Alert : public Displayable {
public:
    // `image` may be null; its content is shared, so the Image may be deleted first.
    Alert(const std::string& title, const std::string& text, Image* image, AlertType type);
    ~Alert() override;

    void setText(const std::string& text);
    std::string getText() const;
    void setImage(Image* image);
    void setType(AlertType type);
    AlertType getType() const;

    const char* kind() const override { return "alert"; }
    bool isPopup() const override { return true; }

protected:
    bool onKey(Key key) override;
    void describeContent(nlohmann::json& out) const override;

private:
    std::string mText;
    std::shared_ptr<const ImageData> mImage;
    AlertType mType;
    int mFocus = 0;
};

} // namespace DisplayAPI
