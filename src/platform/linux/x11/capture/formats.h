#pragma once

#include "platform/linux/x11/connection/connection.h"

#include <xcb/render.h>

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace lumetry::x11 {

/// How RENDER reads the pixels of windows and pixmaps. The server is asked on first use; when it
/// does not say, everything is absent.
class CaptureFormats {
public:
    struct Format {
        xcb_render_pictformat_t id = 0;
        bool hasAlpha = false;
    };

    explicit CaptureFormats(Connection& connection) : connection_(connection) {}

    /// Premultiplied 0xAARRGGBB in words of 32 bits. Absent where the server has none.
    [[nodiscard]] std::optional<xcb_render_pictformat_t> translucent();
    /// Absent for a visual whose pixels RENDER cannot read.
    [[nodiscard]] std::optional<Format> ofVisual(xcb_visualid_t visual);
    /// For the pixels of a pixmap that goes with the root window, without alpha when it can be.
    [[nodiscard]] std::optional<xcb_render_pictformat_t> ofPixmap(std::uint8_t depth);

private:
    void ask();

    Connection& connection_;
    bool isAsked_ = false;
    std::optional<xcb_render_pictformat_t> translucent_;
    std::unordered_map<xcb_visualid_t, Format> ofVisual_;
    std::unordered_map<std::uint8_t, xcb_render_pictformat_t> ofDepth_;
};

} // namespace lumetry::x11
