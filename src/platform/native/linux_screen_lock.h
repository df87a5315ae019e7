#pragma once

#include "base/handler_list.h"
#include "platform/linux/lock/lock_watch.h"
#include "platform/run_loop.h"
#include "platform/screen_lock.h"

#include <functional>
#include <memory>
#include <vector>

namespace lumetry {

/// The screen is locked when any sign says so. They are watched only while somebody wants to know
/// of changes.
class LinuxScreenLock final : public ScreenLock {
public:
    using Watches = std::vector<std::unique_ptr<LockWatch>>;

    /// @param startWatching for all signs there are
    LinuxScreenLock(RunLoop& runLoop, std::function<Watches()> startWatching);

    [[nodiscard]] bool isLocked() override;
    [[nodiscard]] Token onChange(std::function<void()> handler) override;

private:
    struct Watching {
        Watches watches;
        HandlerList<> handlers;
    };

    RunLoop& runLoop_;
    std::function<Watches()> startWatching_;
    std::weak_ptr<Watching> watching_; ///< for as long as there are handlers
};

} // namespace lumetry
