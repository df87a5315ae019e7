#pragma once

#include "base/geometry.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace lumetry {

/// How much of an element is to be seen, and why not more.
enum class Presence : std::uint8_t {
    whole,
    partlyClipped,
    partlyCovered,
    partlyOffScreen,
    hidden,  ///< its application says so
    clipped, ///< scrolled or clipped away
    covered, ///< by other windows
    offScreen,
};

/// Whether nothing of it is to be seen.
[[nodiscard]] constexpr bool isGone(Presence presence) {
    return presence >= Presence::hidden;
}

/// What of a window is to be seen. All rectangles in accessibility space.
class Visibility {
public:
    /// @param above the windows that lie above it
    /// @param screens their frames
    Visibility(const Rect& window, std::vector<Rect> above, std::vector<Rect> screens)
        : window_(window), above_(std::move(above)), screens_(std::move(screens)) {}

    [[nodiscard]] const Rect& window() const { return window_; }
    /// @param clip what the element's parents let be seen of it
    [[nodiscard]] Presence presenceOf(const Rect& frame, const Rect& clip) const;

private:
    Rect window_;
    std::vector<Rect> above_;
    std::vector<Rect> screens_;
};

/// What of an area none of the others covers, in pieces that do not overlap.
[[nodiscard]] std::vector<Rect> subtract(const Rect& area, const std::vector<Rect>& others);

} // namespace lumetry
