#include "platform/resting_event_monitors.h"

#include <memory>
#include <utility>

namespace lumetry {
namespace {

/// How long the pointer does not move before it is at rest, in seconds.
constexpr double rest = 0.05;
/// A shorter time is not worth waiting for.
constexpr double negligible = 0.001;

/// One monitor's handler, and when the pointer has moved last.
struct Monitor {
    std::function<void(const Event&)> handler; ///< empty once the monitor has ended
    double lastMove = 0;
    bool waits = false;

    /// The handler may end the monitor.
    void tell(const Event& event) const {
        if (const auto called = handler) {
            called(event);
        }
    }
};

void awaitRest(const std::shared_ptr<Monitor>& monitor, RunLoop& runLoop, double seconds) {
    monitor->waits = true;
    runLoop.after(seconds, [weak = std::weak_ptr(monitor), &runLoop] {
        const auto still = weak.lock();
        if (!still) {
            return;
        }
        const double left = still->lastMove + rest - runLoop.now();
        if (left > negligible) {
            awaitRest(still, runLoop, left);
            return;
        }
        still->waits = false;
        still->tell({EventType::mouseMoved});
    });
}

} // namespace

Token RestingEventMonitors::addGlobalMonitorForEvents(EventMask mask,
                                                      std::function<void(const Event&)> handler) {
    if ((mask & eventMask(EventType::mouseMoved)) == 0) {
        return monitors_.addGlobalMonitorForEvents(mask, std::move(handler));
    }
    const auto monitor = std::make_shared<Monitor>();
    monitor->handler = std::move(handler);
    auto installed = std::make_shared<Token>(monitors_.addGlobalMonitorForEvents(
        mask, [weak = std::weak_ptr(monitor), &runLoop = runLoop_](const Event& event) {
            const auto still = weak.lock();
            if (!still) {
                return;
            }
            still->tell(event);
            if (event.type == EventType::mouseMoved) {
                still->lastMove = runLoop.now();
                if (!still->waits) {
                    awaitRest(still, runLoop, rest);
                }
            }
        }));
    if (!*installed) {
        return {};
    }
    return Token([monitor, installed] {
        installed->reset();
        monitor->handler = nullptr;
    });
}

} // namespace lumetry
