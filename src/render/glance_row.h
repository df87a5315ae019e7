#pragma once

#include "base/color.h"

#include <optional>
#include <string>

namespace lumetry {

/// One line of the glance: what is measured, the measurement, and a colour chip where it is a
/// colour.
struct GlanceRow {
    std::string label;
    std::string value;
    std::optional<Color> swatch;

    friend bool operator==(const GlanceRow&, const GlanceRow&) = default;
};

} // namespace lumetry
