// A scrolling text line that a screen shows under its title.
#pragma once

#include <memory>
#include <string>

namespace DisplayAPI {

// Screens keep only a weak reference to the text, so deleting the ticker takes it off every
// screen that shows it.
struct TickerData {
    std::string text;
    unsigned long ownerId = 0;
};

class Ticker {
public:
    explicit Ticker(const std::string& text);
    ~Ticker();
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

    void setText(const std::string& text);
    std::string getText() const;
    void setOwnerId(unsigned long id);
    unsigned long getOwnerId() const;

    std::weak_ptr<TickerData> data() const { return mData; }

private:
    std::shared_ptr<TickerData> mData;
};

} // namespace DisplayAPI
