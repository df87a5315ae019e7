#pragma once

#include "base/geometry.h"
#include "rig/private_desktop.h"

#include <cstddef>
#include <span>
#include <vector>

namespace lumetry::latency {

/// A page in Chromium, over the whole screen of 1280 x 800, with elements of each class.
class MeasuredPage {
public:
    struct Spot {
        const char* name;
        const char* bucket; ///< the class that is to be found there
        Point at;           ///< pixels of the root window
    };

    /// Returns once its elements can be asked for.
    explicit MeasuredPage(desktop::PrivateDesktop& desktop);

    /// Each spot many times, never the same one twice in a row.
    [[nodiscard]] static std::vector<Point> points();
    [[nodiscard]] static const Spot& spotOf(std::size_t point);

private:
    desktop::ChildProcess browser_;
};

} // namespace lumetry::latency
