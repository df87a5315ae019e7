#include "platform/linux/x11/capture/wallpaper.h"

#include "platform/linux/x11/connection/property.h"

#include <cstddef>

namespace lumetry::x11 {

std::optional<Wallpaper> findWallpaper(Connection& connection, CaptureFormats& formats) {
    std::array<PropertyRequest, wallpaperAtoms.size()> requests;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        requests[i] = requestProperty(connection, connection.root(), wallpaperAtoms[i], 1);
    }
    std::optional<Wallpaper> wallpaper;
    for (const PropertyRequest request : requests) {
        const auto pixmap = firstNumber(connection, request);
        if (wallpaper || pixmap.value_or(0) == 0) {
            continue;
        }
        const auto geometry =
            connection.reply(xcb_get_geometry_reply, xcb_get_geometry(connection.get(), *pixmap));
        const auto format = geometry ? formats.ofPixmap(geometry->depth) : std::nullopt;
        if (format) {
            wallpaper = Wallpaper{*pixmap, *format};
        }
    }
    return wallpaper;
}

} // namespace lumetry::x11
