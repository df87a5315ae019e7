#pragma once

#include "base/token.h"

#include <functional>

namespace lumetry {

/// Lets the main thread's loop wait for connections as well.
class FileDescriptorWatcher {
public:
    FileDescriptorWatcher() = default;
    FileDescriptorWatcher(const FileDescriptorWatcher&) = delete;
    FileDescriptorWatcher& operator=(const FileDescriptorWatcher&) = delete;
    virtual ~FileDescriptorWatcher() = default;

    /// Calls the handler on the main thread whenever the descriptor has something to read, for as
    /// long as the token lives.
    [[nodiscard]] virtual Token watchReadable(int fileDescriptor,
                                              std::function<void()> handler) = 0;
};

} // namespace lumetry
