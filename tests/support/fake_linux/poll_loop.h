#pragma once

#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"
#include "rig/processes/wait_until.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

namespace lumetry::test {

/// A main loop on poll(), in the hands of the test.
class PollLoop final : public RunLoop, public FileDescriptorWatcher {
public:
    [[nodiscard]] double now() override;
    void async(std::function<void()> task) override;
    void after(double seconds, std::function<void()> task) override;
    [[nodiscard]] Token every(double seconds, std::function<void()> task) override;
    [[nodiscard]] Token watchReadable(int fileDescriptor, std::function<void()> handler) override;

    [[nodiscard]] bool watches() const { return !watches_.empty(); }
    /// Lets that much time seem to have passed.
    void skip(double seconds) { skipped_ += seconds; }
    /// Waits for something to do, at most that long, and does it. False when nothing came.
    bool turn(std::chrono::milliseconds longest);
    /// Does all there is to do until nothing has come for that long.
    /// @return how often there was something to do
    std::size_t settle(std::chrono::milliseconds rest = std::chrono::milliseconds(50));
    /// Runs until the condition is true; false when it is not at the deadline.
    template<class Condition>
    [[nodiscard]] bool runUntil(Condition condition) {
        const auto end = std::chrono::steady_clock::now() + desktop::generousDeadline;
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            turn(std::chrono::milliseconds(10));
        }
        return true;
    }
    /// The same where going on makes no sense: throws std::runtime_error.
    template<class Condition>
    void requireUntil(const std::string& what, Condition condition) {
        if (!runUntil(condition)) {
            throw std::runtime_error("waited too long for " + what);
        }
    }

private:
    struct Watch {
        int fileDescriptor;
        std::function<void()> handler;
    };

    bool runDueTasks();

    double skipped_ = 0;
    std::deque<std::function<void()>> tasks_;
    std::multimap<double, std::function<void()>> timers_; ///< by when they are due
    std::map<std::size_t, std::shared_ptr<Watch>> watches_;
    std::size_t nextWatch_ = 0;
};

} // namespace lumetry::test
