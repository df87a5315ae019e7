#pragma once

#include "platform/linux/x11/capture/formats.h"
#include "platform/linux/x11/connection/atoms.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/render.h>

#include <array>
#include <optional>

namespace lumetry::x11 {

/// The properties of the root window that name a wallpaper.
inline constexpr std::array wallpaperAtoms = {Atom::xrootPmapId, Atom::esetrootPmapId};

/// The pixmap that wallpaper setters leave on the root window, to be repeated from its origin on.
struct Wallpaper {
    xcb_pixmap_t pixmap = XCB_PIXMAP_NONE;
    xcb_render_pictformat_t format = 0;
};

/// Absent when there is none that can be read.
[[nodiscard]] std::optional<Wallpaper> findWallpaper(Connection& connection,
                                                     CaptureFormats& formats);

} // namespace lumetry::x11
