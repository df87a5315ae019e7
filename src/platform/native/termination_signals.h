#pragma once

#include "base/token.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <csignal>
#include <functional>
#include <optional>

namespace lumetry {

/// Keeps requests to end the process (SIGINT, SIGTERM, SIGHUP) from ending it at once, so that it
/// can leave in order. To be made before the first thread is started, since a thread that lets them
/// through would end the process all the same.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Calls the handler on the main thread for each request, for as long as the token lives, which
    /// has to be shorter than this.
    [[nodiscard]] Token watch(FileDescriptorWatcher& watcher, std::function<void()> handler);

    /// The signal of the latest request, whether a handler was called for it or, from now on, will
    /// not be; absent while there is none.
    [[nodiscard]] std::optional<int> received();

private:
    bool takeNext();

    sigset_t before_{};
    int descriptor_ = -1;
    std::optional<int> received_;
};

} // namespace lumetry
