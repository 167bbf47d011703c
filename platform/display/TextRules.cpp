// Text entry rules.
#include "display/TextRules.h"

#include <cstring>

namespace DisplayAPI {
namespace text {

namespace {

// Length of the valid UTF-8 sequence at `at`, or 0 when the bytes there are not one.
std::size_t sequenceLength(const std::string& s, std::size_t at) {
    const auto lead = static_cast<unsigned char>(s[at]);
    std::size_t length = lead < 0x80           ? 1
                         : (lead >> 5) == 0x6  ? 2
                         : (lead >> 4) == 0xE  ? 3
                         : (lead >> 3) == 0x1E ? 4
                                               : 0;
    if (length == 0 || at + length > s.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((static_cast<unsigned char>(s[at + i]) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

bool accepts(Charset charset, const std::string& character) {
    if (character.size() == 1) {
        const char c = character[0];
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            return false;
        }
        if (charset == Charset::Digits) {
            return c >= '0' && c <= '9';
        }
        if (charset == Charset::DateTime) {
            return (c >= '0' && c <= '9') || std::strchr("-./: APMapm", c) != nullptr;
        }
        return true;
    }
    return charset == Charset::Any;
}

} // namespace

std::size_t length(const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t step = sequenceLength(text, at);
        at += step == 0 ? 1 : step;
        ++count;
    }
    return count;
}

std::string truncate(const std::string& text, int maximum) {
    if (maximum < 0) {
        return text;
    }
    std::size_t at = 0;
    for (int count = 0; count < maximum && at < text.size(); ++count) {
        const std::size_t step = sequenceLength(text, at);
        at += step == 0 ? 1 : step;
    }
    return text.substr(0, at);
}

std::string dropLast(const std::string& text) {
    std::size_t last = 0;
    for (std::size_t at = 0; at < text.size();) {
        last = at;
        const std::size_t step = sequenceLength(text, at);
        at += step == 0 ? 1 : step;
    }
    return text.substr(0, last);
}

std::string mask(const std::string& text) {
    return std::string(length(text), '*');
}

std::string append(const std::string& text, const std::string& typed, Charset charset, int maximum) {
    std::string result = text;
    std::size_t count = length(text);
    for (std::size_t at = 0; at < typed.size();) {
        const std::size_t step = sequenceLength(typed, at);
        if (step == 0) {
            ++at;
            continue;
        }
        const std::string character = typed.substr(at, step);
        at += step;
        if (!accepts(charset, character)) {
            continue;
        }
        if (maximum >= 0 && count >= static_cast<std::size_t>(maximum)) {
            break;
        }
        result += character;
        ++count;
    }
    return result;
}

} // namespace text
} // namespace DisplayAPI
