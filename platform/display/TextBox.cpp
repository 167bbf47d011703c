// Text boxes: always in entry mode unless read-only; Ok hands the text to the application.
#include "display/TextBox.h"

#include <nlohmann/json.hpp>

#include "display/Command.h"
#include "display/TextRules.h"

namespace DisplayAPI {

TextBox::TextBox(bool /*reserved*/) {}

TextBox::~TextBox() {
    retire();
}

void TextBox::setMaxSize(unsigned maximum) {
    core::Lock lock(core::mutex());
    mMaxSize = maximum;
    mText = text::truncate(mText, static_cast<int>(mMaxSize));
    core::changedLocked();
}

unsigned TextBox::getMaxSize() const {
    core::Lock lock(core::mutex());
    return mMaxSize;
}

void TextBox::setReadOnlyMode(bool readOnly) {
    core::Lock lock(core::mutex());
    mReadOnly = readOnly;
    core::changedLocked();
}

bool TextBox::isReadOnly() const {
    core::Lock lock(core::mutex());
    return mReadOnly;
}

void TextBox::setTextBoxType(int type) {
    core::Lock lock(core::mutex());
    mType = type == NUMBER || type == PASSWORD ? type : ANY;
    core::changedLocked();
}

int TextBox::getTextBoxType() const {
    core::Lock lock(core::mutex());
    return mType;
}

void TextBox::setText(const std::string& value, bool /*reserved*/) {
    core::Lock lock(core::mutex());
    mText = text::truncate(value, static_cast<int>(mMaxSize));
    core::changedLocked();
}

std::string TextBox::getText() const {
    core::Lock lock(core::mutex());
    return mText;
}

bool TextBox::type(const std::string& typed) {
    if (mReadOnly) {
        return false;
    }
    const auto charset = mType == NUMBER ? text::Charset::Digits : text::Charset::Any;
    const std::string before = mText;
    mText = text::append(mText, typed, charset, static_cast<int>(mMaxSize));
    core::changed();
    return mText != before;
}

bool TextBox::handleText(const std::string& typed, bool replace) {
    const bool cleared = replace && !mReadOnly && !mText.empty();
    if (cleared) {
        mText.clear();
        core::changed();
    }
    return type(typed) || cleared;
}

bool TextBox::onKey(Key key) {
    if (const char c = keyCharacter(key)) {
        return type(std::string(1, c));
    }
    switch (key) {
    case Key::Up:
        return enterTabBarFromTop();
    case Key::Left:
        if (mReadOnly || mText.empty()) {
            return false;
        }
        mText = text::dropLast(mText);
        core::changed();
        return true;
    default:
        return deliverStandard(
            key, {{Key::Right, Command::RIGHT}, {Key::Ok, Command::OK}, {Key::Back, Command::BACK}});
    }
}

void TextBox::describeContent(nlohmann::json& out) const {
    out["text"] = mType == PASSWORD ? text::mask(mText) : mText;
    out["caret"] = text::length(mText);
    out["textType"] = mType;
    out["readOnly"] = mReadOnly;
    out["maxSize"] = mMaxSize;
}

} // namespace DisplayAPI
