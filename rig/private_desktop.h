#pragma once

#include "base/geometry.h"
#include "rig/desktop_session.h"
#include "rig/input_device.h"
#include "rig/processes/child_process.h"
#include "rig/x_connection.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

struct DesktopOptions {
    /// Of the root window, in pixels.
    int width = 1280;
    int height = 800;
    int depth = 24; ///< bits of a colour
    /// The screens it is made of, in pixels of the root window with y downwards; the first is the
    /// primary one. Empty: one screen of the whole size.
    std::vector<Rect> screens;
    /// Device pixels for each point, as the X server's resources say it.
    double scale = 1;
    bool windowManager = true;
    bool compositor = true;
    AccessibilityBus accessibility = AccessibilityBus::enabled;
    /// Further arguments of Xvfb, such as "-dpi", "192".
    std::vector<std::string> serverArguments;
};

/// Has the X server's resources say how many device pixels a point has.
void declareScale(const XConnection& server, double scale);

/// A desktop of its own without a screen: X server, session bus, window manager, compositing
/// manager and accessibility bus.
class PrivateDesktop final : public DesktopSession {
public:
    /// Returns once everything asked for is up and ready. Throws std::runtime_error that says what
    /// is missing or did not come up.
    explicit PrivateDesktop(const DesktopOptions& options = {});
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

    /// Such as ":0".
    [[nodiscard]] const std::string& display() const { return display_; }
    [[nodiscard]] const XConnection& server() const { return *server_; }
    [[nodiscard]] InputDevice& input() { return *input_; }

    /// Ends the X server, and with it whatever cannot do without. Nothing of this object that has
    /// to do with the server is of use after that.
    void stopServer();

private:
    void startServerAndBus(const DesktopOptions& options);
    void startManagers(const DesktopOptions& options);
    void awaitManagers();

    std::string display_;
    ChildProcess* xServer_ = nullptr;
    ChildProcess* windowManager_ = nullptr;
    ChildProcess* compositor_ = nullptr;
    std::optional<XConnection> server_;
    std::optional<InputDevice> input_;
};

} // namespace lumetry::desktop
