#pragma once

#include "platform/run_loop.h"

#include <functional>
#include <vector>

namespace lumetry {

/// A clock and a queue that move only when a test says so.
class FakeRunLoop final : public RunLoop {
public:
    /// Runs the tasks that wait in the queue; those that they add wait for the next turn.
    void turn();
    /// Moves the clock on, running what falls due at its time and in order.
    void advance(double seconds);

    [[nodiscard]] double now() override { return now_; }
    void async(std::function<void()> task) override;
    void after(double seconds, std::function<void()> task) override;
    [[nodiscard]] Token every(double seconds, std::function<void()> task) override;

private:
    struct Timer {
        int number;
        double due;
        double interval; ///< 0 for a timer that fires once
        std::function<void()> task;
    };

    void addTimer(double seconds, double interval, std::function<void()> task);

    double now_ = 700'000'000;
    int lastNumber_ = 0;
    std::vector<std::function<void()>> queue_;
    std::vector<Timer> timers_;
};

} // namespace lumetry
