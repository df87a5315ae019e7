#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/screen_capture.h"

#include <xcb/render.h>
#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>

namespace lumetry::x11 {

/// Of pixmaps that captures are put together in: 0xAARRGGBB.
inline constexpr std::uint8_t translucentDepth = 32;

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

/// Memory shared with the server, into which it puts pixels. It has no name on the system: a file
/// descriptor is handed over, and the memory is gone with the last process that has it.
class CaptureSegment {
public:
    explicit CaptureSegment(Connection& connection);
    CaptureSegment(const CaptureSegment&) = delete;
    CaptureSegment& operator=(const CaptureSegment&) = delete;
    ~CaptureSegment();

    /// Reads the top-left part of a pixmap of depth 32. Valid until the next call. Empty when
    /// memory cannot be shared with the server, or when there is no such pixmap.
    [[nodiscard]] std::span<const std::uint32_t> read(xcb_pixmap_t pixmap, IntSize size);

private:
    [[nodiscard]] bool reserve(std::size_t bytes);
    void free();

    Connection& connection_;
    bool isAvailable_;
    xcb_shm_seg_t segment_;
    void* memory_ = nullptr;
    std::size_t capacity_ = 0; ///< in bytes
};

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
    void reserve(IntSize size);
    /// Of what reserve has made room for, from the top-left corner on.
    [[nodiscard]] xcb_render_picture_t picture() const { return picture_; }

    /// Calls the function with each row's words, in the server's byte order, from the top. False
    /// when the pixels cannot be read.
    template<class Function>
    [[nodiscard]] bool read(IntSize size, Function function) {
        const auto words = fetch(size);
        const auto width = static_cast<std::size_t>(size.width);
        for (std::size_t row = 0; row * width < words.size(); ++row) {
            function(static_cast<int>(row), words.subspan(row * width, width));
        }
        return !words.empty();
    }

private:
    [[nodiscard]] std::span<const std::uint32_t> fetch(IntSize size);
    void free();

    Connection& connection_;
    xcb_render_pictformat_t format_;
    IntSize size_; ///< of the pixmap; nothing before there is one
    xcb_pixmap_t pixmap_;
    xcb_render_picture_t picture_;
    CaptureSegment segment_;
    Reply<xcb_get_image_reply_t> image_; ///< what was read last, without shared memory
};

} // namespace lumetry::x11
