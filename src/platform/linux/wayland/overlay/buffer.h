#pragma once

#include "base/int_geometry.h"
#include "platform/display_list.h"
#include "platform/linux/wayland/connection/proxies.h"
#include "platform/linux/wayland/overlay/painting.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace lumetry::wayland {

/// Pixels that are shared with the compositor; transparent at first. Memory is taken for what is
/// drawn on.
class Buffer {
public:
    /// None when there is no memory for it.
    /// @param onRelease called when the compositor has done with it
    [[nodiscard]] static std::unique_ptr<Buffer> make(wl_shm* shm, IntSize size,
                                                      std::function<void()> onRelease);
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer();

    /// Whether the compositor reads it.
    [[nodiscard]] bool isBusy() const { return busy_; }
    [[nodiscard]] IntSize size() const { return pixels_.size; }
    /// Makes it show a drawing; only while it is not busy.
    void show(const DisplayList& list, const Rasterizer& rasterizer);
    /// To be handed to the compositor, which keeps it until it releases it.
    [[nodiscard]] wl_buffer* handOver();

private:
    struct Events;

    Buffer(const Pixels& pixels, std::function<void()> onRelease);

    Pixels pixels_;
    std::function<void()> onRelease_;
    Owned<wl_buffer> proxy_;
    DisplayList shown_;
    bool busy_ = false;
};

} // namespace lumetry::wayland
