#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/screen_capture.h"

#include <xcb/shm.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace lumetry::x11 {

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
    [[nodiscard]] std::span<const std::uint32_t> read(xcb_pixmap_t pixmap, PixelSize size);

private:
    [[nodiscard]] bool reserve(std::size_t bytes);
    void free();

    Connection& connection_;
    bool isAvailable_;
    xcb_shm_seg_t segment_;
    void* memory_ = nullptr;
    std::size_t capacity_ = 0; ///< in bytes
};

} // namespace lumetry::x11
