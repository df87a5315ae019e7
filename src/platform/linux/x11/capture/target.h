#pragma once

#include "platform/linux/x11/capture/formats.h"
#include "platform/linux/x11/capture/segment.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/screen_capture.h"

#include <xcb/render.h>

#include <cstdint>
#include <optional>
#include <span>

namespace lumetry::x11 {

/// Whether the server's words have their bytes in the other order than this machine's.
[[nodiscard]] bool hasOtherByteOrder(const Connection& connection);

[[nodiscard]] constexpr std::uint32_t swapped(std::uint32_t word) {
    return (word >> 24U) | ((word >> 8U) & 0xFF00U) | ((word << 8U) & 0xFF0000U) | (word << 24U);
}

/// Where the server puts a capture together, and the way from there into this program. Both are
/// kept from one capture to the next.
class CaptureTarget {
public:
    CaptureTarget(Connection& connection, xcb_render_pictformat_t translucentFormat);
    CaptureTarget(const CaptureTarget&) = delete;
    CaptureTarget& operator=(const CaptureTarget&) = delete;
    ~CaptureTarget();

    /// Makes room for that many pixels, whose contents are undefined.
    void reserve(PixelSize size);
    /// Of what reserve has made room for, from the top-left corner on.
    [[nodiscard]] xcb_render_picture_t picture() const { return picture_; }

    /// Calls the function with each row's words, in the server's byte order, from the top. False
    /// when the pixels cannot be read.
    template<class Function>
    [[nodiscard]] bool read(PixelSize size, Function function) {
        const auto words = fetch(size);
        const auto width = static_cast<std::size_t>(size.width);
        for (std::size_t row = 0; row * width < words.size(); ++row) {
            function(static_cast<int>(row), words.subspan(row * width, width));
        }
        return !words.empty();
    }

private:
    [[nodiscard]] std::span<const std::uint32_t> fetch(PixelSize size);
    void free();

    Connection& connection_;
    xcb_render_pictformat_t format_;
    PixelSize size_; ///< of the pixmap; nothing before there is one
    xcb_pixmap_t pixmap_;
    xcb_render_picture_t picture_;
    CaptureSegment segment_;
    Reply<xcb_get_image_reply_t> image_; ///< what was read last, without shared memory
};

} // namespace lumetry::x11
