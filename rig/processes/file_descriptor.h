#pragma once

#include <unistd.h>

#include <chrono>
#include <string>
#include <utility>

namespace lumetry::desktop {

/// Owns a file descriptor; -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    [[nodiscard]] int get() const { return descriptor_; }
    void reset() {
        if (descriptor_ >= 0) {
            close(std::exchange(descriptor_, -1));
        }
    }

private:
    int descriptor_ = -1;
};

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// Both ends are closed in programs that are started, unless handed on by name.
[[nodiscard]] Pipe makePipe();

/// What can be read until the writing side is closed or a line is complete; the line break is left
/// out. Throws std::runtime_error when the deadline passes first.
[[nodiscard]] std::string readLine(int descriptor, std::chrono::milliseconds deadline);

} // namespace lumetry::desktop
