#include "pointer_picture.h"

#include <xcb/xfixes.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

/// One premultiplied pixel over another, opaque one.
std::uint32_t over(std::uint32_t top, std::uint32_t bottom) {
    constexpr std::uint32_t full = 0xFF;
    const auto seenThrough = full - (top >> 24U);
    std::uint32_t blended = full << 24U;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const auto channel =
            ((top >> shift) & full) + ((bottom >> shift) & full) * seenThrough / full;
        blended |= (channel & full) << shift;
    }
    return blended;
}

} // namespace

void drawPointer(const XConnection& server, Bitmap& screen) {
    // The server answers requests of the extension only to clients that have asked its version.
    const auto versionRequest =
        xcb_xfixes_query_version(server.get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const Reply<xcb_xfixes_query_version_reply_t> version(
        xcb_xfixes_query_version_reply(server.get(), versionRequest, nullptr));
    const auto request = xcb_xfixes_get_cursor_image(server.get());
    const Reply<xcb_xfixes_get_cursor_image_reply_t> reply(
        xcb_xfixes_get_cursor_image_reply(server.get(), request, nullptr));
    if (!reply) {
        throw std::runtime_error("the X server does not give out how the pointer looks");
    }
    const auto* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    for (int row = 0; row < reply->height; ++row) {
        for (int column = 0; column < reply->width; ++column, ++pixels) {
            const int x = reply->x - reply->xhot + column;
            const int y = reply->y - reply->yhot + row;
            if (x >= 0 && x < screen.width && y >= 0 && y < screen.height) {
                auto& below = screen.pixels[static_cast<std::size_t>(y) *
                                                static_cast<std::size_t>(screen.width) +
                                            static_cast<std::size_t>(x)];
                below = over(*pixels, below);
            }
        }
    }
}

} // namespace lumetry::desktop
