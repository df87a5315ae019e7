#include "base/color_difference.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace lumetry {
namespace {

double radians(double degrees) {
    return degrees * std::numbers::pi / 180;
}

/// From 0 up to 360; 0 for a grey, which has none.
double hueAngle(double a, double b) {
    if (a == 0 && b == 0) {
        return 0;
    }
    const double degrees = std::atan2(b, a) * 180 / std::numbers::pi;
    return degrees < 0 ? degrees + 360 : degrees;
}

double seventhPowerShare(double chroma) {
    constexpr double reference = 6103515625.0; // 25 to the seventh power
    const double power = std::pow(chroma, 7);
    return std::sqrt(power / (power + reference));
}

/// From the first angle to the second, the short way round.
double angleBetween(double first, double second) {
    const double difference = second - first;
    if (difference > 180) {
        return difference - 360;
    }
    return difference < -180 ? difference + 360 : difference;
}

double meanAngle(double first, double second) {
    const double sum = first + second;
    if (std::abs(first - second) <= 180) {
        return sum / 2;
    }
    return sum < 360 ? (sum + 360) / 2 : (sum - 360) / 2;
}

double squared(double value) {
    return value * value;
}

} // namespace

Lab labOf(const Color& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const std::array<double, 3> rgb = {linear(color.red), linear(color.green), linear(color.blue)};
    constexpr std::array<std::array<double, 3>, 3> toXyz = {{{0.4124564, 0.3575761, 0.1804375},
                                                             {0.2126729, 0.7151522, 0.0721750},
                                                             {0.0193339, 0.1191920, 0.9503041}}};
    constexpr std::array<double, 3> whitePoint = {0.95047, 1.0, 1.08883};
    std::array<double, 3> f{};
    for (std::size_t row = 0; row < 3; ++row) {
        double sum = 0;
        for (std::size_t column = 0; column < 3; ++column) {
            sum += toXyz.at(row).at(column) * rgb.at(column);
        }
        const double t = sum / whitePoint.at(row);
        constexpr double epsilon = 216.0 / 24389;
        constexpr double kappa = 24389.0 / 27;
        f.at(row) = t > epsilon ? std::cbrt(t) : (kappa * t + 16) / 116;
    }
    return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}

double colorDifference(const Lab& first, const Lab& second) {
    const double meanChroma = (std::hypot(first.a, first.b) + std::hypot(second.a, second.b)) / 2;
    const double stretch = 1 + 0.5 * (1 - seventhPowerShare(meanChroma));
    const double a1 = stretch * first.a;
    const double a2 = stretch * second.a;
    const double chroma1 = std::hypot(a1, first.b);
    const double chroma2 = std::hypot(a2, second.b);
    const double hue1 = hueAngle(a1, first.b);
    const double hue2 = hueAngle(a2, second.b);
    const bool isGrey = chroma1 * chroma2 == 0;

    const double lightnessStep = second.lightness - first.lightness;
    const double chromaStep = chroma2 - chroma1;
    const double hueStep =
        isGrey ? 0
               : 2 * std::sqrt(chroma1 * chroma2) * std::sin(radians(angleBetween(hue1, hue2)) / 2);

    const double lightness = (first.lightness + second.lightness) / 2;
    const double chroma = (chroma1 + chroma2) / 2;
    const double hue = isGrey ? hue1 + hue2 : meanAngle(hue1, hue2);

    const double t = 1 - 0.17 * std::cos(radians(hue - 30)) + 0.24 * std::cos(radians(2 * hue)) +
                     0.32 * std::cos(radians(3 * hue + 6)) - 0.20 * std::cos(radians(4 * hue - 63));
    const double lightnessWeight =
        1 + 0.015 * squared(lightness - 50) / std::sqrt(20 + squared(lightness - 50));
    const double chromaWeight = 1 + 0.045 * chroma;
    const double hueWeight = 1 + 0.015 * chroma * t;
    const double rotation = -2 * seventhPowerShare(chroma) *
                            std::sin(radians(60 * std::exp(-squared((hue - 275) / 25))));
    const double c = chromaStep / chromaWeight;
    const double h = hueStep / hueWeight;
    return std::sqrt(squared(lightnessStep / lightnessWeight) + squared(c) + squared(h) +
                     rotation * c * h);
}

double colorDifference(const Color& a, const Color& b) {
    return colorDifference(labOf(a), labOf(b));
}

} // namespace lumetry
