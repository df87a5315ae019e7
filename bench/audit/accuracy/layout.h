#pragma once

#include "base/geometry.h"

namespace lumetry::auditing {

/// Places in rows from the top left of a window, none of which touch.
class Layout {
public:
    static constexpr double width = 1240;

    /// @param room around it, to whatever comes next
    [[nodiscard]] Rect place(Size size, double room = 24) {
        if (x_ + size.width > width) {
            x_ = margin;
            y_ += rowHeight_;
            rowHeight_ = 0;
        }
        const Rect box = {x_, y_, size.width, size.height};
        x_ += size.width + room;
        rowHeight_ = rowHeight_ > size.height + room ? rowHeight_ : size.height + room;
        return box;
    }
    /// Where the next row begins.
    void startRow() { x_ = width + 1; }

private:
    static constexpr double margin = 20;
    double x_ = margin;
    double y_ = margin;
    double rowHeight_ = 0;
};

} // namespace lumetry::auditing
