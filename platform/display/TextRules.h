// Rules of text entry shared by text fields and text boxes: character sets, length and masking.
#pragma once

#include <cstddef>
#include <string>

namespace DisplayAPI {
namespace text {

enum class Charset {
    Any,      // every printable character
    Digits,   // 0-9 only (numeric and phone number entry)
    DateTime, // digits and the separators of dates and times
};

// Length in characters (UTF-8 code points).
std::size_t length(const std::string& text);
// The first `maximum` characters; a negative maximum means no limit.
std::string truncate(const std::string& text, int maximum);
// Without its last character.
std::string dropLast(const std::string& text);
// One '*' per character.
std::string mask(const std::string& text);
// `text` with the acceptable characters of `typed` appended, up to `maximum` characters. Invalid
// UTF-8 and control characters are dropped.
std::string append(const std::string& text, const std::string& typed, Charset charset, int maximum);

} // namespace text
} // namespace DisplayAPI
