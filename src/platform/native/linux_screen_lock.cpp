#include "platform/native/linux_screen_lock.h"

#include <algorithm>
#include <utility>

namespace lumetry {
namespace {

bool anyLocked(const LinuxScreenLock::Watches& watches) {
    return std::ranges::any_of(watches, [](const auto& watch) { return watch->locked(); });
}

} // namespace

LinuxScreenLock::LinuxScreenLock(RunLoop& runLoop, std::function<Watches()> startWatching)
    : runLoop_(runLoop), startWatching_(std::move(startWatching)) {}

bool LinuxScreenLock::isLocked() {
    if (const auto watching = watching_.lock()) {
        return anyLocked(watching->watches);
    }
    return anyLocked(startWatching_());
}

Token LinuxScreenLock::onChange(std::function<void()> handler) {
    auto watching = watching_.lock();
    if (!watching) {
        watching = std::make_shared<Watching>();
        watching->watches = startWatching_();
        watching_ = watching;
        for (const auto& watch : watching->watches) {
            watch->onChange = [this] {
                // The last handler may go away while a watch speaks, but not the watch.
                const auto speaking = watching_.lock();
                runLoop_.async([speaking] {});
                speaking->handlers.call();
            };
        }
    }
    auto entry = std::make_shared<Token>(watching->handlers.add(std::move(handler)));
    return Token([watching, entry] { entry->reset(); });
}

} // namespace lumetry
