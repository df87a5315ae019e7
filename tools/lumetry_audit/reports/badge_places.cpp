#include "lumetry_audit/reports/badge_places.h"

#include <algorithm>
#include <cmath>

namespace lumetry {
namespace {

std::pair<int, int> cellOf(Point at) {
    return {static_cast<int>(std::floor(at.x / badgeSize)),
            static_cast<int>(std::floor(at.y / badgeSize))};
}

} // namespace

// Where the picture is shown larger, the badges only move apart.
BadgePlaces::BadgePlaces(const Rect& window)
    : window_(window), scale_(std::min(1.0, narrowestPicture / std::max(1.0, window.width))),
      width_(window.width * scale_), height_(window.height * scale_) {}

std::optional<Point> BadgePlaces::inTheWayOf(Point at) const {
    constexpr double near = badgeSize - 1e-6; // sums are rounded
    const auto [column, row] = cellOf(at);
    for (int x = column - 1; x <= column + 1; ++x) {
        for (int y = row - 1; y <= row + 1; ++y) {
            const auto other = taken_.find({x, y});
            if (other != taken_.end() && std::abs(other->second.x - at.x) < near &&
                std::abs(other->second.y - at.y) < near) {
                return other->second;
            }
        }
    }
    return std::nullopt;
}

BadgePlaces::Place BadgePlaces::next(const Rect& box) {
    const double right = std::max(0.0, width_ - badgeSize);
    const double bottom = std::max(0.0, height_ - badgeSize);
    const double top = (box.y - window_.y) * scale_;
    const Point first = {std::clamp((box.x - window_.x) * scale_, 0.0, right),
                         std::clamp(top >= badgeSize ? top - badgeSize : top, 0.0, bottom)};
    Point found = first;
    while (const auto other = inTheWayOf(found)) {
        found.x = other->x + badgeSize;
        if (found.x > right) {
            found = {0, found.y + badgeSize};
        }
        if (found.y > bottom) {
            found = first;
            break;
        }
    }
    taken_.emplace(cellOf(found), found);
    const bool inside = found.y < badgeSize;
    return {found.x / std::max(1.0, width_),
            (inside ? found.y : found.y + badgeSize) / std::max(1.0, height_), inside};
}

} // namespace lumetry
