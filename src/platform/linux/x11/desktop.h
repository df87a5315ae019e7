#pragma once

#include "base/color.h"
#include "platform/linux/lock/lock_watch.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/linux/windows/desktop_windows.h"
#include "platform/rasterizer.h"
#include "platform/run_loop.h"

#include "platform/hot_keys.h"
#include "platform/input.h"
#include "platform/overlay_window.h"
#include "platform/screen_capture.h"
#include "platform/window_server.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumetry {

/// The X11 side of the desktop. Everything it has handed out ends before it does; tokens may
/// outlive it.
class X11Desktop {
public:
    /// Connects to the X server that $DISPLAY names.
    /// @param problem a sentence for the user that says what to do, when the answer is empty
    /// @param chosenScale device pixels for each point; when absent, what the desktop declares
    [[nodiscard]] static std::unique_ptr<X11Desktop>
    open(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::string& problem,
         std::optional<double> chosenScale = std::nullopt);
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;
    ~X11Desktop();

    [[nodiscard]] WindowServer& windowServer();
    [[nodiscard]] DesktopWindows& desktopWindows();
    [[nodiscard]] Pointer& pointer();
    [[nodiscard]] EventMonitors& eventMonitors();
    [[nodiscard]] ScreenCapture& screenCapture();
    [[nodiscard]] HotKeys& hotKeys();
    /// Calls the handler when a hot key that was registered turns out to be another program's,
    /// once.
    void onHotKeyTaken(std::function<void()> handler);
    /// @param rasterizer draws the windows' contents, and outlives them; that of the first call
    /// counts
    [[nodiscard]] OverlayWindows& overlayWindows(const Rasterizer& rasterizer);

    /// Watches for a locker's window, and the server's screen saver.
    [[nodiscard]] std::unique_ptr<LockWatch> watchLock();
    /// The platform's code of a key: that of Escape or M, else keyCodeUnknown.
    /// @param key the server's code
    [[nodiscard]] std::uint16_t keyCode(std::uint32_t key);
    /// Whether a key changes the modifiers when it is pressed.
    [[nodiscard]] bool isModifier(std::uint32_t key);
    /// Whether a tray takes in icons (the XEmbed kind).
    [[nodiscard]] bool hasSystemTray();
    /// The colour that it wants icons to be drawn in; absent where it does not say.
    [[nodiscard]] std::optional<Color> systemTrayForeground();
    /// Calls the handler whenever such a tray has come or gone.
    [[nodiscard]] Token onSystemTrayChange(std::function<void()> handler);

    /// Calls the handler once, from the main queue, when the server has gone. From then on
    /// everything is absent.
    void onConnectionLost(std::function<void()> handler);
    /// How often the program has had to wait for the server so far.
    [[nodiscard]] std::size_t roundTrips() const;

private:
    struct Parts;
    explicit X11Desktop(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace lumetry
