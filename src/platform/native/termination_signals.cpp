#include "platform/native/termination_signals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <utility>

namespace lumetry {

TerminationSignals::TerminationSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&signals, number);
    }
    descriptor_ = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    pthread_sigmask(descriptor_ < 0 ? SIG_UNBLOCK : SIG_BLOCK, &signals, &before_);
}

TerminationSignals::~TerminationSignals() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

Token TerminationSignals::watch(FileDescriptorWatcher& watcher,
                                std::function<void()> handler) const {
    if (descriptor_ < 0) {
        return {};
    }
    return watcher.watchReadable(
        descriptor_, [descriptor = descriptor_, handler = std::move(handler)] {
            signalfd_siginfo received{};
            if (read(descriptor, &received, sizeof received) == sizeof received) {
                handler();
            }
        });
}

} // namespace lumetry
