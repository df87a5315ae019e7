#pragma once

namespace lumetry {

class Accessibility;
class Applications;
class Defaults;
class EventMonitors;
class FileSystem;
class OverlayWindows;
class Pointer;
class RunLoop;
class ScreenCapture;
class ScreenLock;
class WindowServer;

/// The desktop, as far as the engine sees it. The entry point makes one, and it outlives all that
/// is given it.
struct Platform {
    Accessibility& accessibility;
    WindowServer& windowServer;
    Pointer& pointer;
    EventMonitors& eventMonitors;
    Applications& applications;
    FileSystem& fileSystem;
    RunLoop& runLoop;
    Defaults& defaults;
    OverlayWindows& overlayWindows;
    ScreenCapture& screenCapture;
    ScreenLock& screenLock;
};

} // namespace lumetry
