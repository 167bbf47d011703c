// List rows.
#include "display/ListItem.h"

#include "display/Core.h"
#include "display/Image.h"
#include "display/List.h"

namespace DisplayAPI {

ListItem::ListItem() = default;

ListItem::ListItem(const TranslationInfo& text, bool /*reserved*/) : mTranslatedText(text) {}

ListItem::~ListItem() {
    core::Lock lock(core::mutex());
    if (mList != nullptr) {
        mList->forgetItem(this);
    }
}

void ListItem::setText(const std::string& text) {
    core::Lock lock(core::mutex());
    mText = text;
    mTranslatedText.reset();
    core::changedLocked();
}

std::string ListItem::getText() const {
    core::Lock lock(core::mutex());
    return mTranslatedText ? mTranslatedText->getText() : mText;
}

std::vector<std::string> ListItem::columns() const {
    const std::string text = getText();
    std::vector<std::string> columns;
    std::size_t start = 0;
    for (std::size_t bar = text.find('|'); bar != std::string::npos; bar = text.find('|', start)) {
        columns.push_back(text.substr(start, bar - start));
        start = bar + 1;
    }
    columns.push_back(text.substr(start));
    // Trailing empty columns are padding.
    while (columns.size() > 1 && columns.back().empty()) {
        columns.pop_back();
    }
    return columns;
}

void ListItem::setImage(Image* image) {
    core::Lock lock(core::mutex());
    mImage = image != nullptr ? image->data() : nullptr;
    core::changedLocked();
}

void ListItem::setActiveFontColour(bool active) {
    core::Lock lock(core::mutex());
    mActive = active;
    core::changedLocked();
}

void ListItem::reserveSpaceForImage(bool reserve) {
    core::Lock lock(core::mutex());
    mReserveImage = reserve;
    core::changedLocked();
}

void ListItem::enableContextMenuArrow(bool shown) {
    core::Lock lock(core::mutex());
    mArrow = shown;
    core::changedLocked();
}

void ListItem::setOwnerId(unsigned long id) {
    core::Lock lock(core::mutex());
    mOwnerId = id;
}

unsigned long ListItem::getOwnerId() const {
    core::Lock lock(core::mutex());
    return mOwnerId;
}

} // namespace DisplayAPI
