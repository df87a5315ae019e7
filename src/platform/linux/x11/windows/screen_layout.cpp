#include "platform/linux/x11/windows/screen_layout.h"

#include <algorithm>

namespace lumetry::x11 {
namespace {

/// Whether the stretch from start to end, that pixel included, meets the one from low to high.
bool meets(double start, double end, double low, double high) {
    return start < high && end >= low;
}

} // namespace

Point ScreenLayout::toScreenSpace(Point onRoot) const {
    return flipped(space().toAccessibility(onRoot), primary().height / scale);
}

Rect ScreenLayout::toScreenSpace(const Rect& onRoot) const {
    return flipped(space().toAccessibility(onRoot), primary().height / scale);
}

Rect ScreenLayout::fromScreenSpace(const Rect& rect) const {
    return space().toRoot(flipped(rect, primary().height / scale));
}

Rect withoutStruts(const Rect& screen, const Rect& root, std::span<const Strut> struts) {
    double left = screen.minX();
    double right = screen.maxX();
    double top = screen.minY();
    double bottom = screen.maxY();
    // A strut is counted from the root's edge. The panel is on the screen in which it ends; the
    // screens it passes on the way there keep nothing free for it.
    const auto endsIn = [](double edge, double low, double high) {
        return edge > low && edge < high;
    };
    for (const Strut& strut : struts) {
        const double fromLeft = root.minX() + strut.depth.left;
        const double fromRight = root.maxX() - strut.depth.right;
        const double fromTop = root.minY() + strut.depth.top;
        const double fromBottom = root.maxY() - strut.depth.bottom;
        const auto rows = [&](double start, double end) {
            return meets(start, end, screen.minY(), screen.maxY());
        };
        const auto columns = [&](double start, double end) {
            return meets(start, end, screen.minX(), screen.maxX());
        };
        if (strut.depth.left > 0 && endsIn(fromLeft, screen.minX(), screen.maxX()) &&
            rows(strut.start.left, strut.end.left)) {
            left = std::max(left, fromLeft);
        }
        if (strut.depth.right > 0 && endsIn(fromRight, screen.minX(), screen.maxX()) &&
            rows(strut.start.right, strut.end.right)) {
            right = std::min(right, fromRight);
        }
        if (strut.depth.top > 0 && endsIn(fromTop, screen.minY(), screen.maxY()) &&
            columns(strut.start.top, strut.end.top)) {
            top = std::max(top, fromTop);
        }
        if (strut.depth.bottom > 0 && endsIn(fromBottom, screen.minY(), screen.maxY()) &&
            columns(strut.start.bottom, strut.end.bottom)) {
            bottom = std::min(bottom, fromBottom);
        }
    }
    const Rect free = {left, top, right - left, bottom - top};
    return free.isEmpty() ? screen : free;
}

std::vector<Screen> describeScreens(const ScreenLayout& layout, std::span<const Strut> struts,
                                    const std::optional<Rect>& workArea) {
    std::vector<Screen> screens;
    for (const Rect& screen : layout.screens) {
        Rect visible = withoutStruts(screen, layout.root, struts);
        if (struts.empty() && workArea && layout.screens.size() == 1) {
            const Rect usable = intersect(screen, *workArea);
            visible = usable.isNull() ? screen : usable;
        }
        screens.push_back(
            {layout.toScreenSpace(screen), layout.toScreenSpace(visible), layout.scale});
    }
    return screens;
}

} // namespace lumetry::x11
