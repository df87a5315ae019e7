#include "base/geometry.h"

#include <algorithm>
#include <cmath>

namespace lumetry {

bool Rect::isNull() const {
    return std::isinf(x) && std::isinf(y);
}

bool Rect::isEmpty() const {
    return isNull() || !(width > 0 && height > 0);
}

bool Rect::contains(Point point) const {
    return !isEmpty() && point.x >= minX() && point.x < maxX() && point.y >= minY() &&
           point.y < maxY();
}

std::optional<Span> gapBetween(const Span& a, const Span& b) {
    if (a.high <= b.low) {
        return Span{a.high, b.low};
    }
    if (b.high <= a.low) {
        return Span{b.high, a.low};
    }
    return std::nullopt;
}

Rect unite(const Rect& a, const Rect& b) {
    if (a.isNull()) {
        return b;
    }
    if (b.isNull()) {
        return a;
    }
    const double left = std::min(a.minX(), b.minX());
    const double top = std::min(a.minY(), b.minY());
    return {left, top, std::max(a.maxX(), b.maxX()) - left, std::max(a.maxY(), b.maxY()) - top};
}

Rect intersect(const Rect& a, const Rect& b) {
    const double left = std::max(a.minX(), b.minX());
    const double top = std::max(a.minY(), b.minY());
    const Rect shared = {left, top, std::min(a.maxX(), b.maxX()) - left,
                         std::min(a.maxY(), b.maxY()) - top};
    return a.isEmpty() || b.isEmpty() || shared.isEmpty() ? Rect::null() : shared;
}

Rect inset(const Rect& rect, double dx, double dy) {
    const Rect result = {rect.x + dx, rect.y + dy, rect.width - 2 * dx, rect.height - 2 * dy};
    return rect.isNull() || result.width < 0 || result.height < 0 ? Rect::null() : result;
}

Point flipped(Point point, double height) {
    return {point.x, height - point.y};
}

Rect flipped(const Rect& rect, double height) {
    return {rect.x, height - rect.maxY(), rect.width, rect.height};
}

} // namespace lumetry
