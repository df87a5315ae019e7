#pragma once

#include "base/bitmap.h"
#include "rig/desktop_session.h"
#include "rig/processes/child_process.h"
#include "rig/wayland_input.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace lumetry::desktop {

struct KwinOptions {
    /// Of each output, in points.
    int width = 1280;
    int height = 800;
    int outputs = 1;  ///< side by side
    double scale = 1; ///< device pixels for each point
    bool xwayland = false;
    AccessibilityBus accessibility = AccessibilityBus::enabled;
};

/// A desktop of its own without a screen under KWin, the compositor of KDE Plasma: its Wayland
/// session with session bus and accessibility bus. The outputs' names are "Virtual-0" and so on.
/// This very program may move its pointer, press its keys and take its screenshots.
class KwinDesktop final : public DesktopSession {
public:
    /// Why there can be no such desktop on this machine; absent when nothing is missing.
    [[nodiscard]] static std::optional<std::string> problem();

    /// Returns once everything asked for is up and ready. Throws std::runtime_error that says what
    /// is missing or did not come up.
    explicit KwinDesktop(const KwinOptions& options = {});
    ~KwinDesktop();
    KwinDesktop(const KwinDesktop&) = delete;
    KwinDesktop& operator=(const KwinDesktop&) = delete;

    /// The path of the compositor's socket.
    [[nodiscard]] std::string socket() const;
    [[nodiscard]] WaylandInput& input() { return *input_; }
    /// What an output shows, in its device pixels, without the pointer. Opaque. KWin stretches it
    /// by a pixel where the output is not whole points long, and points not whole pixels.
    [[nodiscard]] Bitmap screenshot(std::size_t output = 0) const;

    /// Has KWin know a program by a desktop entry that permits it what is restricted: the windows'
    /// pictures, input devices, the list of windows, the state of keys. From its next start on.
    void permit(const std::filesystem::path& program);

    /// Ends KWin, and with it whatever cannot do without. Neither input nor screenshots are of use
    /// after that.
    void stopCompositor();
    /// Ends KWin as a crash does, and starts it again. Its clients are gone, or have to come back.
    void restartCompositor();

private:
    void startCompositor();
    void adoptVariables(const std::filesystem::path& file);

    KwinOptions options_;
    std::optional<WaylandInput> input_;
    ChildProcess* compositor_ = nullptr;
    int permitted_ = 0;
};

} // namespace lumetry::desktop
