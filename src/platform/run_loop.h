#pragma once

#include "base/token.h"

#include <functional>

namespace lumetry {

/// The main thread's queue and clock. Everything runs on the main thread, in turn.
class RunLoop {
public:
    RunLoop() = default;
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;
    virtual ~RunLoop() = default;

    /// Seconds since 1 January 2001, 00:00 UTC (timeIntervalSinceReferenceDate). Never runs
    /// backwards: a change of the system's clock does not show.
    [[nodiscard]] virtual double now() = 0;
    /// Runs the task on a later turn of the main queue.
    virtual void async(std::function<void()> task) = 0;
    /// Runs the task once, that many seconds from now.
    virtual void after(double seconds, std::function<void()> task) = 0;
    /// Runs the task every that many seconds for as long as the token lives.
    [[nodiscard]] virtual Token every(double seconds, std::function<void()> task) = 0;
};

} // namespace lumetry
