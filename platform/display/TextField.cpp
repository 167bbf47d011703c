// Text fields: editing from the keypad and from typed text, finished with Ok.
#include "display/TextField.h"

#include <nlohmann/json.hpp>

#include "display/TextRules.h"
#include "text/TranslationInfo.h"

namespace DisplayAPI {

namespace {

text::Charset charsetOf(TextField::FieldType type) {
    switch (type) {
    case TextField::NUMERIC:
        return text::Charset::Digits;
    case TextField::DATE:
    case TextField::TIME:
    case TextField::DATE_TIME:
        return text::Charset::DateTime;
    default:
        return text::Charset::Any;
    }
}

} // namespace

TextField::TextField(const TranslationInfo* label, int /*iconId*/, const Image* /*icon*/, FieldType type,
                     bool /*reserved*/)
    : mType(type) {
    if (label != nullptr) {
        setLabel(*label);
    }
}

TextField::~TextField() {
    retire();
}

void TextField::setString(const std::string& value) {
    core::Lock lock(core::mutex());
    mText = text::truncate(value, mMaxLength);
    mEditing = false;
    core::changedLocked();
}

std::string TextField::getString() const {
    core::Lock lock(core::mutex());
    return mText;
}

void TextField::setReadOnlyMode(bool readOnly) {
    core::Lock lock(core::mutex());
    mReadOnly = readOnly;
    if (readOnly && mEditing) {
        finishEditing(true);
    }
    core::changedLocked();
}

bool TextField::isReadOnly() const {
    core::Lock lock(core::mutex());
    return mReadOnly;
}

void TextField::setMaxFieldLength(int maximum) {
    core::Lock lock(core::mutex());
    mMaxLength = maximum < 0 ? -1 : maximum;
    mText = text::truncate(mText, mMaxLength);
    core::changedLocked();
}

int TextField::getMaxFieldLength() const {
    core::Lock lock(core::mutex());
    return mMaxLength;
}

void TextField::setContextMenuArrowIcon(bool shown) {
    core::Lock lock(core::mutex());
    mArrow = shown;
    core::changedLocked();
}

TextField::FieldType TextField::getFieldType() const {
    core::Lock lock(core::mutex());
    return mType;
}

bool TextField::isEditing() const {
    core::Lock lock(core::mutex());
    return mEditing;
}

void TextField::startEditing() {
    if (!mEditing) {
        mEditing = true;
        mTextBeforeEdit = mText;
    }
}

// The application hears of an edit once, when it is finished, and only when it changed something.
void TextField::finishEditing(bool keep) {
    if (!mEditing) {
        return;
    }
    mEditing = false;
    if (!keep) {
        mText = mTextBeforeEdit;
    } else if (mText != mTextBeforeEdit) {
        notifyStateChanged();
    }
    core::changed();
}

bool TextField::type(const std::string& typed) {
    if (!editable()) {
        return false;
    }
    startEditing();
    mText = text::append(mText, typed, charsetOf(mType), mMaxLength);
    core::changed();
    return true;
}

bool TextField::itemKey(Key key) {
    if (const char c = keyCharacter(key)) {
        return type(std::string(1, c));
    }
    switch (key) {
    case Key::Ok:
        if (mEditing) {
            finishEditing(true);
            return true;
        }
        if (editable()) {
            startEditing();
            core::changed();
            return true;
        }
        return false;
    case Key::Back:
        if (mEditing) {
            finishEditing(false);
            return true;
        }
        return false;
    case Key::Left:
        if (mEditing) {
            mText = text::dropLast(mText);
            core::changed();
            return true;
        }
        return false;
    case Key::Up:
    case Key::Down:
        // Moving away finishes the edit; the form then moves the focus.
        finishEditing(true);
        return false;
    default:
        return mEditing;
    }
}

bool TextField::handleText(const std::string& typed, bool replace) {
    if (replace && editable()) {
        mText.clear();
    }
    return type(typed);
}

void TextField::focusLeaves() {
    finishEditing(true);
}

void TextField::describeContent(nlohmann::json& out) const {
    out["fieldType"] = static_cast<int>(mType);
    out["value"] = mType == PASSWORD ? text::mask(mText) : mText;
    out["editing"] = mEditing;
    out["readOnly"] = mReadOnly;
    out["maxLength"] = mMaxLength;
    out["arrow"] = mArrow;
}

} // namespace DisplayAPI
