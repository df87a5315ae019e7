#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "probe/role_bucket.h"
#include "session/glance.h"

#include <cstddef>
#include <optional>
#include <string>

namespace lumetry {

/// How a text is set.
struct Typeface {
    std::string family;
    double size = 0; ///< in points
    bool bold = false;

    friend bool operator==(const Typeface&, const Typeface&) = default;
};

/// The typeface that a font row says, such as "Inter · 14px · semibold". Absent when it says no
/// size.
[[nodiscard]] std::optional<Typeface> typefaceOf(const std::string& fontRow);

/// A component of a window with what was measured of it.
struct Component {
    std::string role; ///< such as "AXButton"
    Bucket bucket = Bucket::generic;
    std::string header;                ///< as the panel shows it
    std::string title;                 ///< by which it is named; empty for none
    std::string path;                  ///< its place in the tree, from the window down
    Rect frame;                        ///< accessibility space
    std::optional<std::size_t> parent; ///< another number for the children of another element
    bool enabled = true;
    bool showsText = false;
    std::optional<Typeface> typeface;
    Measures measures;
    bool evenFill = false; ///< its fill is one colour, and no gradient or picture
    /// Of a text that it shows: as the application tells it where the pixels bear that out, else as
    /// the pixels show it. Absent where neither tells.
    std::optional<Color> textColor;
    bool textColorIsEstimated = false;
};

} // namespace lumetry
