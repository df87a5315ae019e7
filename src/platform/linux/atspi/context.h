#pragma once

#include "platform/linux/atspi/answers.h"
#include "platform/linux/atspi/atspi_bus.h"
#include "platform/linux/atspi/deadline.h"
#include "platform/linux/atspi/hit_test.h"
#include "platform/linux/atspi/processes.h"
#include "platform/linux/atspi/toolkits.h"
#include "platform/linux/desktop_windows.h"
#include "platform/linux/file_descriptor_watcher.h"

#include <optional>

namespace lumetry::atspi {

/// What all elements share. It outlives every use of them.
struct Context {
    Context(DesktopWindows& desktopWindows, FileDescriptorWatcher& watcher)
        : windows(desktopWindows), bus(watcher), answers(bus, toolkits), processes(bus),
          hitTest(windows, bus, answers, processes, toolkits) {}

    DesktopWindows& windows;
    AtspiBus bus;
    Toolkits toolkits;
    Answers answers;
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
