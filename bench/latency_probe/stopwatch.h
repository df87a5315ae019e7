#pragma once

#include <chrono>

namespace lumetry {

/// How long something has taken altogether.
class Stopwatch {
public:
    /// Runs while the object lives.
    class Lap {
    public:
        explicit Lap(Stopwatch& watch) : watch_(watch) {}
        ~Lap() { watch_.total_ += std::chrono::steady_clock::now() - begin_; }
        Lap(const Lap&) = delete;
        Lap& operator=(const Lap&) = delete;

    private:
        Stopwatch& watch_;
        std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    };

    [[nodiscard]] double microseconds() const {
        return std::chrono::duration<double, std::micro>(total_).count();
    }

private:
    std::chrono::steady_clock::duration total_{};
};

} // namespace lumetry
