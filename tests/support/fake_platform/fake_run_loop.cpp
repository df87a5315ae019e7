#include "support/fake_platform/fake_run_loop.h"

#include <algorithm>

namespace lumetry {

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
    }
    now_ = end;
}

Token FakeRunLoop::every(double seconds, std::function<void()> task) {
    timers_.push_back({++lastNumber_, now_ + seconds, seconds, std::move(task)});
    return Token([this, number = lastNumber_] {
        std::erase_if(timers_, [number](const Timer& timer) { return timer.number == number; });
    });
}

} // namespace lumetry
