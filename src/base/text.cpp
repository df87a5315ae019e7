#include "base/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>

namespace lumetry {
namespace {

struct Decoded {
    utf8proc_int32_t codePoint;
    std::size_t length;
};

/// The code point at the start of the text, or nothing where its bytes form none.
std::optional<Decoded> decodeFirst(std::string_view text) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &codePoint);
    if (length <= 0) {
        return std::nullopt;
    }
    return Decoded{codePoint, static_cast<std::size_t>(length)};
}

bool isWhiteSpaceOrNewline(utf8proc_int32_t codePoint) {
    if ((codePoint >= 0x09 && codePoint <= 0x0D) || codePoint == 0x85) {
        return true;
    }
    const auto category = utf8proc_category(codePoint);
    return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

bool isControl(utf8proc_int32_t codePoint) {
    const auto category = utf8proc_category(codePoint);
    return category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_ZL ||
           category == UTF8PROC_CATEGORY_ZP;
}

std::string escaped(utf8proc_int32_t codePoint) {
    switch (codePoint) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        std::array<char, sizeof "\\uFFFF"> text{};
        std::snprintf(text.data(), text.size(), "\\u%04X", static_cast<unsigned>(codePoint));
        return text.data();
    }
}

} // namespace

std::string validUtf8(std::string_view text) {
    constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto decoded = decodeFirst(text);
        const std::size_t length = decoded ? decoded->length : 1;
        result += decoded ? text.substr(0, length) : replacementCharacter;
        text.remove_prefix(length);
    }
    return result;
}

std::string trimmed(std::string_view text) {
    std::size_t begin = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const auto decoded = decodeFirst(text.substr(at));
        const std::size_t length = decoded ? decoded->length : 1;
        if (!decoded || !isWhiteSpaceOrNewline(decoded->codePoint)) {
            begin = begin == text.size() ? at : begin;
            end = at + length;
        }
        at += length;
    }
    return begin < end ? std::string(text.substr(begin, end - begin)) : std::string();
}

std::string firstCharacters(std::string_view text, std::size_t count) {
    utf8proc_int32_t state = 0;
    std::optional<utf8proc_int32_t> previous;
    std::size_t characters = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto decoded = decodeFirst(text.substr(at));
        const utf8proc_int32_t current = decoded ? decoded->codePoint : 0xFFFD;
        if (!previous || utf8proc_grapheme_break_stateful(*previous, current, &state)) {
            if (characters == count) {
                break;
            }
            ++characters;
        }
        previous = current;
        at += decoded ? decoded->length : 1;
    }
    return std::string(text.substr(0, at));
}

std::string onOneLine(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto decoded = decodeFirst(text);
        const std::size_t length = decoded ? decoded->length : 1;
        result += decoded && isControl(decoded->codePoint) ? escaped(decoded->codePoint)
                                                           : std::string(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

std::string lowerCase(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto decoded = decodeFirst(text);
        const std::size_t length = decoded ? decoded->length : 1;
        if (decoded) {
            std::array<utf8proc_uint8_t, 4> bytes{};
            const auto count =
                utf8proc_encode_char(utf8proc_tolower(decoded->codePoint), bytes.data());
            result.append(bytes.begin(), bytes.begin() + count);
        } else {
            result += text.front();
        }
        text.remove_prefix(length);
    }
    return result;
}

std::string removingOccurrences(std::string_view text, std::string_view pattern) {
    std::string result;
    while (!pattern.empty()) {
        const std::size_t at = text.find(pattern);
        if (at == std::string_view::npos) {
            break;
        }
        result += text.substr(0, at);
        text.remove_prefix(at + pattern.size());
    }
    result += text;
    return result;
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::vector<std::string> nonEmptyParts(std::string_view text, char separator) {
    auto parts = split(text, separator);
    std::erase(parts, "");
    return parts;
}

} // namespace lumetry
