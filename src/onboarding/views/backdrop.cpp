#include "onboarding/views/backdrop.h"

#include "onboarding/views/style.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace lumetry::views {
namespace {

/// The light along its way from the centre outwards: pink of that strength, blended in between.
double strengthAt(double distance) {
    constexpr double centre = 0.13;
    constexpr double middle = 0.04;
    constexpr double middlePlace = 0.55;
    if (distance >= 1) {
        return 0;
    }
    return distance < middlePlace ? centre + (middle - centre) * distance / middlePlace
                                  : middle * (1 - distance) / (1 - middlePlace);
}

/// From -0.5 to 0.5, the same for the same place.
float noiseAt(std::uint32_t place) {
    std::uint32_t bits = place * 0x9E3779B1U;
    bits ^= bits >> 15U;
    bits *= 0x85EBCA77U;
    bits ^= bits >> 13U;
    constexpr float range = 65536;
    return static_cast<float>(bits & 0xFFFFU) / range - 0.5F;
}

} // namespace

Backdrop::Backdrop(const QSize& size) : picture_(size, QImage::Format_RGB32) {
    // Of the unit square with y upwards, from the middle of the light to where it ends.
    constexpr double startX = 0.5;
    constexpr double startY = 0.3;
    constexpr double reachX = 1.25 - startX;
    constexpr double reachY = 1.4 - startY;
    strengths_.reserve(static_cast<std::size_t>(size.width()) *
                       static_cast<std::size_t>(size.height()));
    for (int y = 0; y < size.height(); ++y) {
        const double dy = (1 - (y + 0.5) / size.height() - startY) / reachY;
        for (int x = 0; x < size.width(); ++x) {
            const double dx = ((x + 0.5) / size.width() - startX) / reachX;
            strengths_.push_back(static_cast<float>(strengthAt(std::hypot(dx, dy))));
        }
    }
    setOpacity(1);
}

void Backdrop::setOpacity(double opacity) {
    constexpr float full = 255;
    const QColor ground = background();
    const QColor light = pink();
    const std::array<float, 3> from = {ground.redF() * full, ground.greenF() * full,
                                       ground.blueF() * full};
    const std::array<float, 3> way = {light.redF() * full - from[0],
                                      light.greenF() * full - from[1],
                                      light.blueF() * full - from[2]};
    std::uint32_t place = 0;
    for (int y = 0; y < picture_.height(); ++y) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): pixels are told apart so
        auto* const line = reinterpret_cast<QRgb*>(picture_.scanLine(y));
        for (int x = 0; x < picture_.width(); ++x, ++place) {
            const float share = strengths_[place] * static_cast<float>(opacity);
            const float noise = noiseAt(place) + 0.5F;
            const auto channel = [&](std::size_t i) {
                return static_cast<int>(from.at(i) + way.at(i) * share + noise);
            };
            line[x] = qRgb(channel(0), channel(1), channel(2));
        }
    }
}

} // namespace lumetry::views
