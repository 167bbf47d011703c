// Plain-text rendering of the display's snapshot: what a person sees, one line per row.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

class TextRenderer {
public:
    // The screen (title, ticker, rows or items with the focus marked ">"), the popup over it,
    // the tab bar and the soft keys. A hidden display renders as "(application hidden)".
    static std::string render(const nlohmann::json& snapshot);
};
