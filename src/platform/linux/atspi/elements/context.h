#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/hit_test/hit_test.h"
#include "platform/linux/atspi/tree/processes.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/linux/windows/desktop_windows.h"

#include <optional>

namespace lumetry::atspi {

/// What all elements share. It outlives every use of them.
struct Context {
    Context(DesktopWindows& desktopWindows, FileDescriptorWatcher& watcher)
        : windows(desktopWindows), bus(watcher), toolkits(desktopWindows.placesAreInWindows()),
          cache(bus, toolkits), processes(bus), hitTest(windows, bus, cache, processes, toolkits) {}

    DesktopWindows& windows;
    Bus bus;
    Toolkits toolkits;
    ReplyCache cache;
    Processes processes;
    HitTest hitTest;
    static constexpr float standardTimeoutSeconds = 1;
    float messagingTimeoutSeconds =
        standardTimeoutSeconds; ///< of elements that have none of their own

    [[nodiscard]] Deadline deadline(std::optional<float> ownTimeoutSeconds) const {
        return deadlineIn(ownTimeoutSeconds.value_or(messagingTimeoutSeconds));
    }
};

} // namespace lumetry::atspi
