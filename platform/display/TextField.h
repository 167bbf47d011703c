// A one-line text entry of a form, also used for read-only string items and spacers.
#pragma once

#include <string>

#include "display/Item.h"

class TranslationInfo;

namespace DisplayAPI {

class Image;

class TextField : public Item {
public:
    enum FieldType {
        ANY = 1,       // any text (also URLs, e-mail addresses, string items, spacers)
        DATE = 2,      // a date: digits and separators
        NUMERIC = 3,   // digits only (numbers and phone numbers)
        PASSWORD = 6,  // any text, shown masked
        TIME = 8,      // a time: digits and separators
        DATE_TIME = 9, // both
    };

    // `label` may be null; `iconId`, `icon` and `reserved` are accepted for compatibility and
    // have no visible effect.
    TextField(const TranslationInfo* label, int iconId, const Image* icon, FieldType type, bool reserved);
    ~TextField() override;

    // Shortened to the maximum length.
    void setString(const std::string& text);
    std::string getString() const;
    void setReadOnlyMode(bool readOnly);
    bool isReadOnly() const;
    // -1: no limit.
    void setMaxFieldLength(int maximum);
    int getMaxFieldLength() const;
    void setContextMenuArrowIcon(bool shown);
    FieldType getFieldType() const;
    bool isEditing() const;

    const char* kind() const override { return "textField"; }

    // ---- Used by the library itself. ----
    bool isCapturingKeys() const override { return mEditing; }
    bool itemKey(Key key) override;
    bool handleText(const std::string& text, bool replace) override;
    void focusLeaves() override;

protected:
    void describeContent(nlohmann::json& out) const override;

private:
    bool editable() const { return !mReadOnly && isSelectable(); }
    void startEditing();
    void finishEditing(bool keep);
    bool type(const std::string& text);

    FieldType mType;
    std::string mText;
    std::string mTextBeforeEdit;
    bool mEditing = false;
    bool mReadOnly = false;
    int mMaxLength = -1;
    bool mArrow = false;
};

} // namespace DisplayAPI
