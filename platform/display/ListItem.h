// One row of a list: up to three text columns, a picture, grey text and a context-menu arrow.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "text/TranslationInfo.h"

namespace DisplayAPI {

class Image;
class List;
struct ImageData;

class ListItem {
public:
    ListItem();
    // A row with a translated text (the options row of a list); `reserved` has no effect.
    ListItem(const TranslationInfo& text, bool reserved);
    // Takes the row out of its list.
    ~ListItem();
    ListItem(const ListItem&) = delete;
    ListItem& operator=(const ListItem&) = delete;

    // Columns are separated by '|': "Name|Number|Type".
    void setText(const std::string& text);
    std::string getText() const;
    // The picture's content is shared; null removes it.
    void setImage(Image* image);
    // false shows the row in grey (inactive).
    void setActiveFontColour(bool active);
    void reserveSpaceForImage(bool reserve);
    void enableContextMenuArrow(bool shown);
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;

    // ---- Used by the library itself; callers hold the library lock. ----
    void attachTo(List* list) { mList = list; }
    List* list() const { return mList; }
    bool ticked = false; // the check mark of a multiple list
    std::vector<std::string> columns() const;
    std::shared_ptr<const ImageData> image() const { return mImage; }
    bool active() const { return mActive; }
    bool arrow() const { return mArrow; }
    bool reservesImageSpace() const { return mReserveImage; }

private:
    std::string mText;
    std::optional<TranslationInfo> mTranslatedText;
    std::shared_ptr<const ImageData> mImage;
    bool mActive = true;
    bool mReserveImage = false;
    bool mArrow = false;
    unsigned long mOwnerId = 0;
    List* mList = nullptr;
};

} // namespace DisplayAPI
