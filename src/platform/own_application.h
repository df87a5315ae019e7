#pragma once

#include "base/token.h"
#include "platform/applications.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// What the platform tells the program (NSApplicationDelegate).
class ApplicationDelegate {
public:
    ApplicationDelegate() = default;
    ApplicationDelegate(const ApplicationDelegate&) = delete;
    ApplicationDelegate& operator=(const ApplicationDelegate&) = delete;
    virtual ~ApplicationDelegate() = default;

    virtual void applicationDidFinishLaunching() = 0;
    /// The user has opened the program again while it runs.
    /// @return whether the platform should do what it always does
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;
    /// The last window of the program has been closed.
    /// @return whether the program should end with it
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
    virtual void applicationWillTerminate() = 0;
};

/// This program as the desktop sees it (NSApplication, NSBundle.main, NSWorkspace).
class OwnApplication {
public:
    OwnApplication() = default;
    OwnApplication(const OwnApplication&) = delete;
    OwnApplication& operator=(const OwnApplication&) = delete;
    virtual ~OwnApplication() = default;

    /// The absolute path of the bundle that it is the main program of (NSBundle.main); where it is
    /// in none, a path that does not end as a bundle's does, or nothing.
    [[nodiscard]] virtual std::string bundlePath() = 0;
    /// Whether the desktop has started the program again to go on where it was interrupted, so that
    /// nothing is to be begun.
    [[nodiscard]] virtual bool isResumed() { return false; }
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Brings the program's windows to the front, whatever application is there.
    virtual void activateIgnoringOtherApps() = 0;
    /// Calls the handler on the main thread whenever the program has become the active one, for as
    /// long as the token lives (didBecomeActiveNotification).
    [[nodiscard]] virtual Token addDidBecomeActiveObserver(std::function<void()> handler) = 0;
    /// Ends the program in order, as soon as the main thread is idle.
    virtual void terminate() = 0;
    /// Opens an address with whatever the desktop has for it; nothing happens where it has nothing
    /// (NSWorkspace.open).
    virtual void openAddress(std::string_view address) = 0;
    /// Starts a process that outlives the program and is not waited for (Process.run). Nothing
    /// happens when it cannot be started.
    /// @param executable an absolute path
    virtual void startProcess(const std::string& executable,
                              const std::vector<std::string>& arguments) = 0;
};

} // namespace lumetry
