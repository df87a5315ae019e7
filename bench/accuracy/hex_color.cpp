#include "hex_color.h"

#include <charconv>
#include <cstddef>

namespace lumetry::accuracy {

std::optional<std::array<int, 3>> channelsIn(std::string_view text) {
    constexpr std::size_t digits = 6;
    constexpr int hexadecimal = 16;
    constexpr unsigned byte = 0xFF;
    const auto hash = text.find('#');
    if (hash == std::string_view::npos) {
        return std::nullopt;
    }
    const auto code = text.substr(hash + 1, digits);
    unsigned value = 0;
    const auto read = std::from_chars(code.data(), code.data() + code.size(), value, hexadecimal);
    if (read.ptr != code.data() + digits) {
        return std::nullopt;
    }
    return std::array{static_cast<int>(value >> 16U), static_cast<int>(value >> 8U & byte),
                      static_cast<int>(value & byte)};
}

} // namespace lumetry::accuracy
