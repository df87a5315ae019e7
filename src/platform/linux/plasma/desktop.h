#pragma once

#include "platform/linux/display/linux_display.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

#include <memory>
#include <string>

namespace lumetry {

/// A Plasma session on Wayland: KWin tells of windows and the pointer, the overlay is a surface of
/// Wayland's.
class PlasmaDesktop final : public LinuxDisplay {
public:
    /// Whether this process runs in such a session.
    [[nodiscard]] static bool isPresent();

    /// @param problem a sentence for the user that says what to do, when the answer is empty
    [[nodiscard]] static std::unique_ptr<PlasmaDesktop>
    open(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::string& problem);
    PlasmaDesktop(const PlasmaDesktop&) = delete;
    PlasmaDesktop& operator=(const PlasmaDesktop&) = delete;
    ~PlasmaDesktop() override;

    [[nodiscard]] WindowServer& windowServer() override;
    [[nodiscard]] DesktopWindows& desktopWindows() override;
    [[nodiscard]] Pointer& pointer() override;
    [[nodiscard]] EventMonitors& eventMonitors() override;
    [[nodiscard]] ScreenCapture& screenCapture() override;
    [[nodiscard]] HotKeys& hotKeys() override;
    void onHotKeyTaken(std::function<void()> handler) override;
    [[nodiscard]] OverlayWindows& overlayWindows(const Rasterizer& rasterizer) override;
    /// None: the services of the session say it all.
    [[nodiscard]] std::unique_ptr<LockWatch> watchLock() override { return nullptr; }
    void onConnectionLost(std::function<void()> handler) override;
    [[nodiscard]] std::size_t roundTrips() const override;

private:
    struct Parts;
    explicit PlasmaDesktop(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

} // namespace lumetry
