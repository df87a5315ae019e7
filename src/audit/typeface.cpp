#include "audit/component.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace lumetry {
namespace {

std::vector<std::string> partsOf(std::string_view text) {
    constexpr std::string_view separator = " · ";
    std::vector<std::string> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + separator.size());
    }
}

} // namespace

std::optional<Typeface> typefaceOf(const std::string& fontRow) {
    constexpr std::array<std::string_view, 3> boldWeights = {"bold", "extrabold", "black"};
    const auto parts = partsOf(fontRow);
    // A family may have the separator in its name.
    for (std::size_t place = parts.size(); place-- > 1;) {
        const std::string& part = parts[place];
        char* end = nullptr;
        const double size = std::strtod(part.c_str(), &end);
        if (end != part.c_str() && std::string_view(end) == "px" && size > 0) {
            const bool bold = place + 1 < parts.size() &&
                              std::ranges::find(boldWeights, parts[place + 1]) != boldWeights.end();
            return Typeface{parts.front(), size, bold};
        }
    }
    return std::nullopt;
}

} // namespace lumetry
