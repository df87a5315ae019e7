#pragma once

#include "base/geometry.h"
#include "rig/desktop_guard.h"
#include "rig/input_device.h"
#include "rig/processes/child_process.h"
#include "rig/x_connection.h"

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

enum class AccessibilityBus {
    none,     ///< no accessibility bus at all
    disabled, ///< the bus runs, but no assistive technology is announced (IsEnabled is false)
    enabled,
};

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
/// manager and accessibility bus, with a home folder that starts empty. When the object is
/// destroyed, or the program ends in whatever way, every process of the desktop ends and its
/// folder goes.
class PrivateDesktop {
public:
    /// Returns once everything asked for is up and ready. Throws std::runtime_error that says what
    /// is missing or did not come up.
    explicit PrivateDesktop(const DesktopOptions& options = {});
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

    /// Such as ":0".
    [[nodiscard]] const std::string& display() const { return display_; }
    /// Removed with the desktop; room for a test's own files.
    [[nodiscard]] const std::filesystem::path& folder() const { return guard_.folder(); }
    /// The folder that programs find as HOME.
    [[nodiscard]] std::filesystem::path home() const { return guard_.folder() / "home"; }
    /// All that a program of the desktop finds in its environment.
    [[nodiscard]] const Environment& environment() const { return environment_; }
    [[nodiscard]] const std::string& sessionBusAddress() const {
        return environment_.at("DBUS_SESSION_BUS_ADDRESS");
    }
    /// Empty when the desktop has none.
    [[nodiscard]] const std::string& accessibilityBusAddress() const {
        return accessibilityBusAddress_;
    }

    [[nodiscard]] const XConnection& server() const { return *server_; }
    [[nodiscard]] InputDevice& input() { return *input_; }

    /// Starts a program in the desktop.
    /// @param arguments the program (found as by requireProgram) and its arguments
    /// @param variables added to the desktop's environment
    [[nodiscard]] ChildProcess start(const std::vector<std::string>& arguments,
                                     const Environment& variables = {});
    /// Announces or withdraws an assistive technology (org.a11y.Status.IsEnabled).
    void setAccessibilityEnabled(bool enabled) const;
    [[nodiscard]] bool accessibilityEnabled() const;

    /// Ends the session bus, and with it whatever cannot do without.
    void stopSessionBus();
    /// Ends the X server, and with it whatever cannot do without. Nothing of this object that has
    /// to do with the server is of use after that.
    void stopServer();

    /// Has this very program take part in the desktop, for tests that use the backends in process:
    /// puts the desktop's variables into its environment. Once for the whole process.
    void join() const;

private:
    void startServerAndBus(const DesktopOptions& options);
    void startManagers(const DesktopOptions& options);
    void startAccessibility(bool enabled);
    void awaitManagers();
    ChildProcess& startService(const std::vector<std::string>& arguments,
                               int inheritedDescriptor = -1);

    DesktopGuard guard_;
    Environment environment_;
    std::string display_;
    std::string accessibilityBusAddress_;
    /// Their places in memory last: programs are pointed to below.
    std::deque<ChildProcess> services_;
    ChildProcess* xServer_ = nullptr;
    ChildProcess* sessionBus_ = nullptr;
    ChildProcess* windowManager_ = nullptr;
    ChildProcess* compositor_ = nullptr;
    std::optional<XConnection> server_;
    std::optional<InputDevice> input_;
};

} // namespace lumetry::desktop
