#pragma once

#include "platform/platform.h"
#include "probe/probe_state.h"
#include "support/fake_platform/fake_accessibility.h"
#include "support/fake_platform/fake_files.h"
#include "support/fake_platform/fake_input.h"
#include "support/fake_platform/fake_run_loop.h"
#include "support/fake_platform/fake_screen_capture.h"
#include "support/fake_platform/fake_windows.h"

#include <string>

namespace lumetry {

/// A desktop without applications: one screen of 1440 × 900 with a panel of 30 at its top, access
/// to everything granted.
class FakeDesktop {
public:
    static constexpr double screenHeight = 900;
    static constexpr pid_t ownPID = 77; ///< what the program believes to be its own process

    FakeDesktop();

    /// Starts an application whose bundle is "/Applications/NAME.app".
    void launch(pid_t pid, const std::string& name, const std::string& bundleIdentifier);
    /// The same with Chromium in the bundle.
    void launchElectron(pid_t pid, const std::string& name);
    /// Opens a normal window behind all others.
    /// @param bounds accessibility space
    void openWindow(pid_t pid, const Rect& bounds);
    /// Points at a place in accessibility space.
    void pointAt(Point at) { pointer.at = {at.x, screenHeight - at.y}; }

    FakeAccessibility accessibility;
    FakeWindowServer windowServer;
    FakePointer pointer;
    FakeEventMonitors eventMonitors;
    FakeApplications applications;
    FakeFileSystem fileSystem;
    FakeRunLoop runLoop;
    FakeDefaults defaults;
    FakeOverlayWindows overlayWindows;
    FakeScreenCapture screenCapture;
    FakeScreenLock screenLock;
    Platform platform = {accessibility,  windowServer,  pointer,   eventMonitors,
                         applications,   fileSystem,    runLoop,   defaults,
                         overlayWindows, screenCapture, screenLock};
    ProbeState state;
};

} // namespace lumetry
