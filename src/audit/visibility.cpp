#include "audit/visibility.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace lumetry {
namespace {

/// Applications round frames to whole points, and let borders of one reach beyond their parents.
constexpr double tolerance = 1.5;

/// Whether that is more than a border.
bool isSubstantial(const Rect& rect) {
    return rect.width > tolerance && rect.height > tolerance;
}

bool isSubstantial(const std::vector<Rect>& pieces) {
    return std::ranges::any_of(pieces, [](const Rect& piece) { return isSubstantial(piece); });
}

/// Something thinner than the tolerance is there as soon as any of it is.
bool isThere(const Rect& visible, const Rect& frame) {
    return visible.width > std::min(tolerance, frame.width / 2) &&
           visible.height > std::min(tolerance, frame.height / 2);
}

} // namespace

Presence Visibility::presenceOf(const Rect& frame, const Rect& clip) const {
    const Rect visible = intersect(frame, clip);
    if (visible.isEmpty() || !isThere(visible, frame)) {
        return Presence::clipped;
    }
    std::vector<Rect> onScreens;
    for (const Rect& screen : screens_) {
        const Rect there = intersect(visible, screen);
        if (!there.isEmpty()) {
            onScreens.push_back(there);
        }
    }
    if (onScreens.empty()) {
        return Presence::offScreen;
    }
    const auto uncovered = subtract(visible, above_);
    if (std::ranges::none_of(uncovered, [&](const Rect& piece) { return isThere(piece, frame); })) {
        return Presence::covered;
    }
    if (isSubstantial(subtract(frame, {clip}))) {
        return Presence::partlyClipped;
    }
    if (isSubstantial(subtract(visible, onScreens))) {
        return Presence::partlyOffScreen;
    }
    const bool covered = std::ranges::any_of(above_, [&](const Rect& other) {
        const Rect shared = intersect(visible, other);
        return !shared.isEmpty() && isSubstantial(shared);
    });
    return covered ? Presence::partlyCovered : Presence::whole;
}

std::vector<Rect> subtract(const Rect& area, const std::vector<Rect>& others) {
    std::vector<Rect> pieces = {area};
    for (const Rect& other : others) {
        std::vector<Rect> left;
        for (const Rect& piece : pieces) {
            const Rect shared = intersect(piece, other);
            if (shared.isEmpty()) {
                left.push_back(piece);
                continue;
            }
            const std::array around = {
                Rect{piece.x, piece.y, piece.width, shared.minY() - piece.y},
                Rect{piece.x, shared.maxY(), piece.width, piece.maxY() - shared.maxY()},
                Rect{piece.x, shared.y, shared.minX() - piece.x, shared.height},
                Rect{shared.maxX(), shared.y, piece.maxX() - shared.maxX(), shared.height},
            };
            std::ranges::copy_if(around, std::back_inserter(left),
                                 [](const Rect& rect) { return !rect.isEmpty(); });
        }
        pieces = std::move(left);
    }
    return pieces;
}

} // namespace lumetry
