#pragma once

#include "platform/run_loop.h"

#include <functional>
#include <utility>
#include <vector>

namespace lumetry {

/// A clock and a queue that move only when a test says so.
class FakeRunLoop final : public RunLoop {
public:
    /// Moves the clock on, running what falls due at its time and in order; by 0 seconds it runs
    /// what waits in the queue.
    void advance(double seconds);

    [[nodiscard]] double now() override { return now_; }
    void async(std::function<void()> task) override { after(0, std::move(task)); }
    void after(double seconds, std::function<void()> task) override {
        timers_.push_back({++lastNumber_, now_ + seconds, 0, std::move(task)});
    }
    [[nodiscard]] Token every(double seconds, std::function<void()> task) override;

private:
    struct Timer {
        int number;
        double due;
        double interval; ///< 0 for a timer that fires once
        std::function<void()> task;
    };

    double now_ = 700'000'000;
    int lastNumber_ = 0;
    std::vector<Timer> timers_;
};

} // namespace lumetry
