#include "base/color_metrics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace lumetry {
namespace {

double linearized(double component) {
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

unsigned byteOf(double component) {
    return static_cast<unsigned>(std::lround(component * 255));
}

} // namespace

std::string hexString(const Color& color) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "#%02X%02X%02X", byteOf(color.red), byteOf(color.green),
                  byteOf(color.blue));
    return text.data();
}

double lum(const Color& color) {
    return 0.2126 * linearized(color.red) + 0.7152 * linearized(color.green) +
           0.0722 * linearized(color.blue);
}

double wcagContrast(const Color& a, const Color& b) {
    constexpr double flare = 0.05;
    const auto [darker, lighter] = std::minmax({lum(a), lum(b)});
    return (lighter + flare) / (darker + flare);
}

} // namespace lumetry
