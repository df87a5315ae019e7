#include "platform/linux/atspi/toolkits.h"

#include <array>
#include <utility>

namespace lumetry::atspi {

Toolkit toolkitNamed(std::string_view name) {
    constexpr std::array<std::pair<std::string_view, Toolkit>, 6> names = {
        {{"gtk", Toolkit::gtk}, // up to version 3
         {"GTK", Toolkit::gtk4},
         {"Chromium", Toolkit::chromium},
         {"Gecko", Toolkit::gecko},
         {"Qt", Toolkit::qt},
         {"J2SE-access-bridge", Toolkit::java}}};
    for (const auto& [known, toolkit] : names) {
        if (name == known) {
            return toolkit;
        }
    }
    return Toolkit::other;
}

const Habits& habitsOf(Toolkit toolkit) {
    static constexpr Habits standard;
    static constexpr Habits gtk{.clipsText = true};
    // Its widgets are never said to be showing, only to be visible.
    static constexpr Habits gtk4{.coordinates = ATSPI_COORD_TYPE_WINDOW,
                                 .shown = ATSPI_STATE_VISIBLE};
    static constexpr Habits chromium{
        .clipsText = true, .rounding = Rounding::outward, .bareTexts = true};
    static constexpr Habits gecko{
        .hitsInPixels = true, .rounding = Rounding::nearest, .bareTexts = true};
    static constexpr Habits java{.placelessFrames = true};
    switch (toolkit) {
    case Toolkit::gtk:
        return gtk;
    case Toolkit::gtk4:
        return gtk4;
    case Toolkit::chromium:
        return chromium;
    case Toolkit::gecko:
        return gecko;
    case Toolkit::java:
        return java;
    case Toolkit::qt:
    case Toolkit::other:
        break;
    }
    return standard;
}

} // namespace lumetry::atspi
