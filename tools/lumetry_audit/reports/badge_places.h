#pragma once

#include "base/geometry.h"

#include <map>
#include <optional>
#include <utility>

namespace lumetry {

/// How wide the picture of a window is shown at least, in pixels of the page; narrower windows as
/// wide as they are.
inline constexpr double narrowestPicture = 640;
/// How large the number of a finding is, in pixels of the page.
inline constexpr double badgeSize = 24;

/// Where the numbers of findings stand on a window's picture, each for itself.
class BadgePlaces {
public:
    /// @param window accessibility space
    explicit BadgePlaces(const Rect& window);

    /// A place on the picture, in parts of its width and height.
    struct Place {
        double left = 0;
        double edge = 0;     ///< the badge's lower one, or the upper one
        bool inside = false; ///< edge is the upper one
    };
    /// The free one that is nearest to the beginning of that box: on its outline, where there is
    /// room, so that what it is about can be seen. Where the picture is full of badges, it covers
    /// some.
    [[nodiscard]] Place next(const Rect& box);

private:
    [[nodiscard]] std::optional<Point> inTheWayOf(Point at) const;

    Rect window_;
    double scale_;
    double width_;  ///< of the picture where it is shown smallest, in pixels of the page
    double height_; ///< the same
    std::map<std::pair<int, int>, Point> taken_; ///< by cells as large as a badge
};

} // namespace lumetry
