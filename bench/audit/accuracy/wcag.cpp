#include "wcag.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace lumetry::auditing {
namespace {

double linear(Rgb level) {
    const double share = static_cast<double>(level) / 255;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(Rgb color) {
    return 0.2126 * linear(color >> 16U & 0xFFU) + 0.7152 * linear(color >> 8U & 0xFFU) +
           0.0722 * linear(color & 0xFFU);
}

/// Of the way from one colour to another.
Rgb between(Rgb from, Rgb to, double share) {
    Rgb mixed = 0;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const auto a = static_cast<double>(from >> shift & 0xFFU);
        const auto b = static_cast<double>(to >> shift & 0xFFU);
        mixed |= static_cast<Rgb>(std::lround(a + (b - a) * share)) << shift;
    }
    return mixed;
}

} // namespace

double contrastOf(Rgb text, Rgb background) {
    const double a = luminance(text) + 0.05;
    const double b = luminance(background) + 0.05;
    return a > b ? a / b : b / a;
}

std::string hexOf(Rgb color) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%06x", color);
    return text.data();
}

Border borderOf(double ratio, Rgb background, Rgb tint) {
    constexpr Rgb black = 0x000000;
    constexpr Rgb white = 0xFFFFFF;
    constexpr int steps = 1024;
    const Rgb end = contrastOf(black, background) > contrastOf(white, background) ? black : white;
    const Rgb start = between(background, tint, 0.3);
    Rgb last = start;
    for (int step = 0; step <= steps; ++step) {
        const Rgb color = between(start, end, static_cast<double>(step) / steps);
        if (contrastOf(color, background) >= ratio) {
            if (last == color || contrastOf(last, background) >= ratio) {
                break;
            }
            return {last, color};
        }
        last = color;
    }
    throw std::runtime_error("no colour has that ratio on " + hexOf(background));
}

} // namespace lumetry::auditing
