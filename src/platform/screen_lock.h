#pragma once

#include "base/token.h"

#include <functional>

namespace lumetry {

/// Whether the user has shut the desktop away, behind a screen locker or a screen saver. Then
/// nothing of it is to be read, and nothing to be shown over it.
class ScreenLock {
public:
    ScreenLock() = default;
    ScreenLock(const ScreenLock&) = delete;
    ScreenLock& operator=(const ScreenLock&) = delete;
    virtual ~ScreenLock() = default;

    /// Whether it is locked now (CGSSessionScreenIsLocked). Known without asking anybody while
    /// changes are being watched.
    [[nodiscard]] virtual bool isLocked() = 0;
    /// Calls the handler on the main thread whenever that has changed (com.apple.screenIsLocked
    /// and com.apple.screenIsUnlocked), for as long as the token lives.
    [[nodiscard]] virtual Token onChange(std::function<void()> handler) = 0;
};

} // namespace lumetry
