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

bool TerminationSignals::takeNext() {
    signalfd_siginfo next{};
    if (descriptor_ < 0 || read(descriptor_, &next, sizeof next) != sizeof next) {
        return false;
    }
    received_ = static_cast<int>(next.ssi_signo);
    return true;
}

Token TerminationSignals::watch(FileDescriptorWatcher& watcher, std::function<void()> handler) {
    if (descriptor_ < 0) {
        return {};
    }
    return watcher.watchReadable(descriptor_, [this, handler = std::move(handler)] {
        if (takeNext()) {
            handler();
        }
    });
}

std::optional<int> TerminationSignals::received() {
    takeNext();
    return received_;
}

} // namespace lumetry
