#pragma once

#include "base/geometry.h"
#include "platform/linux/atspi/message.h"

namespace lumetry::atspi {

/// A place that an object reports, in pixels of the root window.
/// @param scale pixels for each of the application's own units
[[nodiscard]] Rect placeOf(const Extents& extents, double scale);

/// How much of the area that either covers both cover, 0 to 1.
[[nodiscard]] double likeness(const Rect& a, const Rect& b);

/// On displays with many pixels toolkits count in larger units than the X server does, and report
/// places in those. How many pixels such a unit has, from the same window as its application
/// reports it and as the X server does; 1 where that does not tell.
[[nodiscard]] double scaleBetween(const Extents& reported, const Rect& bounds);

} // namespace lumetry::atspi
