#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace lumetry {
namespace {

/// Above this a double no longer holds every integer.
constexpr double largestExactInteger = 9007199254740992.0;

} // namespace

std::string fixedText(double value, int decimals) {
    std::array<char, 512> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                       std::chars_format::fixed, decimals);
    return {buffer.data(), written.ptr};
}

std::string wholeNumber(double value) {
    // Adding zero turns a negative zero into a plain one.
    return fixedText(std::round(value) + 0.0, 0);
}

long long integerValue(double value) {
    constexpr double limit = 9.2e18;
    return std::isnan(value) ? 0 : static_cast<long long>(std::clamp(value, -limit, limit));
}

std::optional<std::string> aspectString(const Size& size) {
    constexpr std::int64_t largestTerm = 32;
    const double width = std::round(size.width);
    const double height = std::round(size.height);
    if (!(width >= 1 && height >= 1)) {
        return std::nullopt;
    }
    if (width <= largestExactInteger && height <= largestExactInteger) {
        const auto w = static_cast<std::int64_t>(width);
        const auto h = static_cast<std::int64_t>(height);
        const auto divisor = std::gcd(w, h);
        if (w / divisor <= largestTerm && h / divisor <= largestTerm) {
            return std::to_string(w / divisor) + ":" + std::to_string(h / divisor);
        }
    }
    return fixedText(size.width / size.height, 2) + ":1";
}

} // namespace lumetry
