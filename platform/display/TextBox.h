// A full-screen text editor (or read-only text) with a title and commands.
#pragma once

#include <string>

#include "display/Displayable.h"

namespace DisplayAPI {

class TextBox : public Displayable {
public:
    enum TextBoxType { ANY = 1, NUMBER = 2, PASSWORD = 3 };

    // `reserved` has no visible effect.
    explicit TextBox(bool reserved = false);
    ~TextBox() override;

    // In characters; the text is shortened to it. Default 5120.
    void setMaxSize(unsigned maximum);
    unsigned getMaxSize() const;
    void setReadOnlyMode(bool readOnly);
    bool isReadOnly() const;
    // 1 any text, 2 digits only, 3 password (shown masked); other values act as 1.
    void setTextBoxType(int type);
    int getTextBoxType() const;
    // Shortened to the maximum size; `reserved` has no effect.
    void setText(const std::string& text, bool reserved = false);
    std::string getText() const;

    const char* kind() const override { return "textBox"; }

    // ---- Used by the library itself. ----
    bool handleText(const std::string& text, bool replace) override;

protected:
    bool onKey(Key key) override;
    void describeContent(nlohmann::json& out) const override;

private:
    bool type(const std::string& text);

    std::string mText;
    unsigned mMaxSize = 5120;
    bool mReadOnly = false;
    int mType = ANY;
};

} // namespace DisplayAPI
