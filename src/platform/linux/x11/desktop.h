#pragma once

#include "base/color.h"
#include "platform/linux/display/linux_display.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumetry {

/// The X11 side of the desktop.
class X11Desktop final : public LinuxDisplay {
public:
    /// Connects to the X server that $DISPLAY names.
    /// @param problem a sentence for the user that says what to do, when the answer is empty
    /// @param chosenScale device pixels for each point; when absent, what the desktop declares
    [[nodiscard]] static std::unique_ptr<X11Desktop>
    open(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::string& problem,
         std::optional<double> chosenScale = std::nullopt);
    X11Desktop(const X11Desktop&) = delete;
    X11Desktop& operator=(const X11Desktop&) = delete;
    ~X11Desktop() override;

    [[nodiscard]] WindowServer& windowServer() override;
    [[nodiscard]] DesktopWindows& desktopWindows() override;
    [[nodiscard]] Pointer& pointer() override;
    [[nodiscard]] EventMonitors& eventMonitors() override;
    [[nodiscard]] ScreenCapture& screenCapture() override;
    [[nodiscard]] HotKeys& hotKeys() override;
    void onHotKeyTaken(std::function<void()> handler) override;
    [[nodiscard]] OverlayWindows& overlayWindows(const Rasterizer& rasterizer) override;
    /// Watches for a locker's window, and the server's screen saver.
    [[nodiscard]] std::unique_ptr<LockWatch> watchLock() override;
    void onConnectionLost(std::function<void()> handler) override;
    [[nodiscard]] std::size_t roundTrips() const override;

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

private:
    struct Parts;
    explicit X11Desktop(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace lumetry
