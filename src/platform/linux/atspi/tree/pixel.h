#pragma once

#include <cstdint>

namespace lumetry::atspi {

/// A point in the units in which an application reports places.
struct Pixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// The same point as an application takes it in a hit test, and as the places that it reports are
/// to be compared with it.
struct HitPoint {
    Pixel asked;
    Pixel reported;
};

} // namespace lumetry::atspi
