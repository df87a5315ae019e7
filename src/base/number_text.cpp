#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numeric>

namespace lumetry {
namespace {

/// Above this a double no longer holds every integer.
constexpr double largestExactInteger = 9007199254740992.0;

std::string formatted(const char* format, double value) {
    std::array<char, 512> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, value);
    return length > 0 ? std::string(buffer.data()) : std::string();
}

} // namespace

std::string wholeNumber(double value) {
    // Adding zero turns a negative zero into a plain one.
    return formatted("%.0f", std::round(value) + 0.0);
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
    return formatted("%.2f:1", size.width / size.height);
}

} // namespace lumetry
