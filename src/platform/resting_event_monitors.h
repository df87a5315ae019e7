#pragma once

#include "platform/input.h"
#include "platform/run_loop.h"

#include <functional>

namespace lumetry {

/// Monitors that tell of a movement once more when the pointer has come to rest. Who takes samples
/// only now and then would else keep the last but one place of a pointer that stops abruptly.
class RestingEventMonitors final : public EventMonitors {
public:
    /// Both outlive it.
    RestingEventMonitors(EventMonitors& monitors, RunLoop& runLoop)
        : monitors_(monitors), runLoop_(runLoop) {}

    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override;

private:
    EventMonitors& monitors_;
    RunLoop& runLoop_;
};

} // namespace lumetry
