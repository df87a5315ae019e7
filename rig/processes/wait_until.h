#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace lumetry::desktop {

/// How long a condition may take before a test gives up: long enough for a loaded machine, for it
/// is spent only when the condition never comes true.
inline constexpr std::chrono::milliseconds generousDeadline = std::chrono::seconds(30);

/// Asks the producer again and again until what it answers is true in a condition (a bool, or an
/// optional with a value), and returns that answer; the last one when the deadline passes.
template<class Producer>
[[nodiscard]] auto waitUntil(Producer&& producer,
                             std::chrono::milliseconds deadline = generousDeadline,
                             std::chrono::milliseconds interval = std::chrono::milliseconds(10))
    -> decltype(producer()) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    auto answer = producer();
    while (!answer && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(interval);
        answer = producer();
    }
    return answer;
}

/// The same where going on without the condition makes no sense: throws std::runtime_error naming
/// what was waited for.
template<class Producer>
auto requireUntil(const std::string& what, Producer&& producer,
                  std::chrono::milliseconds deadline = generousDeadline) -> decltype(producer()) {
    auto answer = waitUntil(std::forward<Producer>(producer), deadline);
    if (!answer) {
        throw std::runtime_error("waited " + std::to_string(deadline.count()) + " ms for " + what);
    }
    return answer;
}

} // namespace lumetry::desktop
