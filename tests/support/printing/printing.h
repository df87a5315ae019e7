#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <ostream>

namespace lumetry {

// How values look in the message of an expectation that fails.

inline std::ostream& operator<<(std::ostream& out, const Point& point) {
    return out << '(' << point.x << ", " << point.y << ')';
}
inline std::ostream& operator<<(std::ostream& out, const Size& size) {
    return out << size.width << " x " << size.height;
}
inline std::ostream& operator<<(std::ostream& out, const Rect& rect) {
    return out << rect.size() << " at " << rect.origin();
}
inline std::ostream& operator<<(std::ostream& out, const Color& color) {
    return out << color.red << ' ' << color.green << ' ' << color.blue << " / " << color.alpha;
}

} // namespace lumetry
