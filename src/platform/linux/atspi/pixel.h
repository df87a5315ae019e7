#pragma once

#include <cstdint>

namespace lumetry::atspi {

/// A point in the units in which an application reports places.
struct Pixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

} // namespace lumetry::atspi
