#pragma once

#include "platform/hot_keys.h"
#include "platform/input.h"
#include "platform/linux/lock/lock_watch.h"
#include "platform/linux/windows/desktop_windows.h"
#include "platform/overlay_window.h"
#include "platform/rasterizer.h"
#include "platform/screen_capture.h"
#include "platform/window_server.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace lumetry {

/// What a display server has of the desktop. Everything it has handed out ends before it does;
/// tokens may outlive it.
class LinuxDisplay {
public:
    LinuxDisplay() = default;
    LinuxDisplay(const LinuxDisplay&) = delete;
    LinuxDisplay& operator=(const LinuxDisplay&) = delete;
    virtual ~LinuxDisplay() = default;

    [[nodiscard]] virtual WindowServer& windowServer() = 0;
    [[nodiscard]] virtual DesktopWindows& desktopWindows() = 0;
    [[nodiscard]] virtual Pointer& pointer() = 0;
    [[nodiscard]] virtual EventMonitors& eventMonitors() = 0;
    [[nodiscard]] virtual ScreenCapture& screenCapture() = 0;
    [[nodiscard]] virtual HotKeys& hotKeys() = 0;
    /// Calls the handler when a hot key that was registered turns out to be another program's,
    /// once.
    virtual void onHotKeyTaken(std::function<void()> handler) = 0;
    /// @param rasterizer draws the windows' contents, and outlives them; that of the first call
    /// counts
    [[nodiscard]] virtual OverlayWindows& overlayWindows(const Rasterizer& rasterizer) = 0;
    /// Watches for what the display server shows of a locked screen; null where that shows in no
    /// way of its own.
    [[nodiscard]] virtual std::unique_ptr<LockWatch> watchLock() = 0;
    /// Calls the handler once, from the main queue, when the server has gone. From then on
    /// everything is absent.
    virtual void onConnectionLost(std::function<void()> handler) = 0;
    /// How often the program has had to wait for the server so far.
    [[nodiscard]] virtual std::size_t roundTrips() const = 0;
};

} // namespace lumetry
