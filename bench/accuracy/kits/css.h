#pragma once

#include "statement.h"

#include <string>

namespace lumetry::accuracy {

/// The declarations of a text's style, as GTK and Qt take them. Fonts are in points of typography,
/// so that they follow the desktop's resolution.
[[nodiscard]] inline std::string fontOf(const Planned& element) {
    constexpr double pointsPerPixel = 0.75;
    return "font-family: '" + element.at("family") + "'; font-weight: " + element.at("weight") +
           "; font-size: " + std::to_string(number(element, "size") * pointsPerPixel) +
           "pt; color: " + element.at("color") + ";";
}

[[nodiscard]] inline std::string surfaceOf(const Planned& element) {
    return "background: " + element.at("fill") +
           "; border: none; border-radius: " + element.at("radius") +
           "px; padding: " + element.at("padding") + "px;";
}

} // namespace lumetry::accuracy
