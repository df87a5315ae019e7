#include "support/fake_platform/fake_run_loop.h"

#include <algorithm>
#include <utility>

namespace lumetry {

void FakeRunLoop::turn() {
    for (const auto& task : std::exchange(queue_, {})) {
        task();
    }
}

void FakeRunLoop::advance(double seconds) {
    const double end = now_ + seconds;
    while (true) {
        const auto next = std::ranges::min_element(timers_, {}, &Timer::due);
        if (next == timers_.end() || next->due > end) {
            break;
        }
        now_ = std::max(now_, next->due);
        const auto task = next->task;
        if (next->interval > 0) {
            next->due += next->interval;
        } else {
            timers_.erase(next);
        }
        task();
        turn();
    }
    now_ = end;
}

void FakeRunLoop::async(std::function<void()> task) {
    queue_.push_back(std::move(task));
}

void FakeRunLoop::after(double seconds, std::function<void()> task) {
    addTimer(seconds, 0, std::move(task));
}

Token FakeRunLoop::every(double seconds, std::function<void()> task) {
    addTimer(seconds, seconds, std::move(task));
    return Token([this, number = lastNumber_] {
        std::erase_if(timers_, [number](const Timer& timer) { return timer.number == number; });
    });
}

void FakeRunLoop::addTimer(double seconds, double interval, std::function<void()> task) {
    timers_.push_back({++lastNumber_, now_ + seconds, interval, std::move(task)});
}

} // namespace lumetry
