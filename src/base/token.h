#pragma once

#include <functional>
#include <utility>

namespace lumetry {

/// Holds something that was installed (a monitor, a timer, a scope) and takes it away again when
/// it is destroyed or reset. An empty token holds nothing.
class Token {
public:
    Token() = default;
    explicit Token(std::function<void()> release) : release_(std::move(release)) {}
    Token(Token&& other) noexcept : release_(std::exchange(other.release_, nullptr)) {}
    Token& operator=(Token&& other) noexcept {
        if (this != &other) {
            reset();
            release_ = std::exchange(other.release_, nullptr);
        }
        return *this;
    }
    Token(const Token&) = delete;
    Token& operator=(const Token&) = delete;
    ~Token() { reset(); }

    void reset() {
        if (auto release = std::exchange(release_, nullptr)) {
            release();
        }
    }
    explicit operator bool() const { return static_cast<bool>(release_); }

private:
    std::function<void()> release_;
};

} // namespace lumetry
