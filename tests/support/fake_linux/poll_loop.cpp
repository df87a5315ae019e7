#include "support/fake_linux/poll_loop.h"

#include <poll.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace lumetry::test {

double PollLoop::now() {
    return skipped_ +
           std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
               .count();
}

void PollLoop::async(std::function<void()> task) {
    tasks_.push_back(std::move(task));
}

void PollLoop::after(double seconds, std::function<void()> task) {
    timers_.emplace(now() + seconds, std::move(task));
}

Token PollLoop::every(double, std::function<void()>) {
    throw std::logic_error("nothing here may wake up again and again");
}

Token PollLoop::watchReadable(int fileDescriptor, std::function<void()> handler) {
    const std::size_t number = nextWatch_++;
    watches_[number] = std::make_shared<Watch>(Watch{fileDescriptor, std::move(handler)});
    return Token([this, number] { watches_.erase(number); });
}

bool PollLoop::runDueTasks() {
    std::deque<std::function<void()>> due = std::exchange(tasks_, {});
    while (!timers_.empty() && timers_.begin()->first <= now()) {
        due.push_back(std::move(timers_.begin()->second));
        timers_.erase(timers_.begin());
    }
    for (const auto& task : due) {
        task();
    }
    return !due.empty();
}

bool PollLoop::turn(std::chrono::milliseconds longest) {
    if (runDueTasks()) {
        return true;
    }
    auto wait = static_cast<int>(longest.count());
    if (!timers_.empty()) {
        const double left = std::max(timers_.begin()->first - now(), 0.0);
        wait = std::min(wait, static_cast<int>(std::ceil(left * 1000)));
    }
    std::vector<pollfd> descriptors;
    std::vector<std::weak_ptr<Watch>> watches;
    for (const auto& [number, watch] : watches_) {
        descriptors.push_back({watch->fileDescriptor, POLLIN, 0});
        watches.emplace_back(watch);
    }
    const bool something = poll(descriptors.data(), descriptors.size(), wait) > 0;
    for (std::size_t i = 0; something && i < descriptors.size(); ++i) {
        const auto watch = watches[i].lock(); // a handler may end other watches
        if (watch && descriptors[i].revents != 0) {
            watch->handler();
        }
    }
    return runDueTasks() || something;
}

std::size_t PollLoop::settle(std::chrono::milliseconds rest) {
    std::size_t turns = 0;
    while (turn(rest)) {
        ++turns;
    }
    return turns;
}

} // namespace lumetry::test
