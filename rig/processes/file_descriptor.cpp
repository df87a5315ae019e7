#include "rig/processes/file_descriptor.h"

#include <fcntl.h>
#include <poll.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace lumetry::desktop {

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::string readLine(int descriptor, std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    std::string line;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        pollfd watched = {descriptor, POLLIN, 0};
        if (left.count() <= 0 || poll(&watched, 1, static_cast<int>(left.count())) == 0) {
            throw std::runtime_error("nothing came through the pipe in time");
        }
        char byte = 0;
        const auto count = read(descriptor, &byte, 1);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0 || byte == '\n') {
            return line;
        }
        line += byte;
    }
}

} // namespace lumetry::desktop
