#pragma once

#include "platform/input.h"

#include <functional>

namespace lumetry {

/// Monitors that hear nothing: only the samples that are asked for are taken, not one more for the
/// movement of the pointer that arrives while a sample is being taken.
class DeafMonitors final : public EventMonitors {
public:
    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask /*mask*/,
                              std::function<void(const Event&)> /*handler*/) override {
        return Token([] {});
    }
};

} // namespace lumetry
