#pragma once

#include <functional>

namespace lumetry {

/// Watches some of the signs of a locked screen, for as long as it lives. What they say at the
/// beginning is known once it is made.
class LockWatch {
public:
    LockWatch() = default;
    LockWatch(const LockWatch&) = delete;
    LockWatch& operator=(const LockWatch&) = delete;
    virtual ~LockWatch() = default;

    [[nodiscard]] virtual bool locked() const = 0;

    /// Called from the main loop whenever that has changed. It must not end the watch.
    std::function<void()> onChange;
};

} // namespace lumetry
