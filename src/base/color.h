#pragma once

namespace lumetry {

/// A colour in the sRGB space: components from 0 to 1, not premultiplied.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    [[nodiscard]] constexpr Color withAlpha(double value) const {
        return {red, green, blue, value};
    }

    friend bool operator==(const Color&, const Color&) = default;
};

inline constexpr Color white = {1, 1, 1, 1};
/// The accent of every part of the user interface.
inline constexpr Color accentPink = {1.0, 0.239, 0.541, 1};
/// The dark background behind text.
inline constexpr Color darkBackground = {0.09, 0.09, 0.11, 1};

} // namespace lumetry
