#pragma once

#include "base/geometry.h"
#include "base/int_geometry.h"

namespace lumetry::atspi {

/// How what an application reports becomes pixels of the root window.
struct Placement {
    double scale = 1; ///< pixels for each of the application's own units
    Point origin;     ///< pixels, of what it counts from
};

/// A place that an object reports, in pixels of the root window.
[[nodiscard]] Rect placeOf(const IntRect& extents, const Placement& placement);
/// The application's own unit that a point of the root window lies in.
[[nodiscard]] IntPoint unitAt(Point point, const Placement& placement);

/// How much of the area that either covers both cover, 0 to 1.
[[nodiscard]] double intersectionOverUnion(const Rect& a, const Rect& b);

/// On displays with many pixels toolkits count in larger units than the X server does, and report
/// places in those. How many pixels such a unit has, from the same window as its application
/// reports it and as the X server does; 1 where that does not tell.
[[nodiscard]] double scaleBetween(const IntRect& reported, const Rect& bounds);

/// Of an application that counts from the origin of its window: the inside of the window that it
/// reports lies in the middle of what the X server has of it.
/// @param client pixels of the root window, without decorations and shadow
[[nodiscard]] Placement placementInside(const IntRect& reported, const Rect& client);

/// Of an application that counts from what it draws, which may be its window with or without
/// decorations, or with its shadow: it is that of which the size is nearest to what it reports of
/// itself.
/// @param client, frame, surface in the units of the root window
[[nodiscard]] Placement placementOnSurface(const IntRect& reported, const Rect& client,
                                           const Rect& frame, const Rect& surface);

/// Of something in such an application that has a window of its own, which it fills: of its place
/// only the size counts, as it is said to lie where what has opened it begins.
/// @param client as above
[[nodiscard]] Placement placementFilling(const IntRect& reported, const Rect& client);

/// Whether both are the same window's, of which one may be with its shadow.
[[nodiscard]] bool lieAlike(const Rect& a, const Rect& b);

} // namespace lumetry::atspi
