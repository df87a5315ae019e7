#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace lumetry::x11 {

/// What a desktop declares about the density of its screens.
struct Declarations {
    std::string resources; ///< of the X server's resource manager: "Xft.dpi:\t144\n" among others
    std::span<const std::uint8_t> settings; ///< what the XSETTINGS manager says; empty without one
};

/// How many device pixels a point has: the settings' Xft/DPI, else the resource Xft.dpi, both by 96
/// dots per inch, else the settings' Gdk/WindowScalingFactor. What is no number above 0 counts as
/// not declared. Kept between 0.5 and 8; 1 where nothing is declared.
[[nodiscard]] double declaredScale(const Declarations& declarations);

} // namespace lumetry::x11
