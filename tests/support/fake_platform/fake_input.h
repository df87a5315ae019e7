#pragma once

#include "platform/input.h"

#include <functional>
#include <vector>

namespace lumetry {

class FakePointer final : public Pointer {
public:
    [[nodiscard]] Point location() override { return at; }
    [[nodiscard]] ModifierFlags modifierFlags() override { return modifiers; }

    Point at; ///< screen space
    ModifierFlags modifiers = 0;
};

/// Monitors that a test fires.
class FakeEventMonitors final : public EventMonitors {
public:
    /// Calls the handlers of the monitors that want the event. A handler may remove any monitor.
    void fire(const Event& event);
    /// The masks of the monitors that are installed, oldest first.
    [[nodiscard]] std::vector<EventMask> masks() const;

    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override;

private:
    struct Monitor {
        int number;
        EventMask mask;
        std::function<void(const Event&)> handler;
    };

    int lastNumber_ = 0;
    std::vector<Monitor> monitors_;
};

} // namespace lumetry
