#pragma once

#include "platform/platform.h"

namespace lumetry {

class HotKeys;
class LocalEventMonitors;
class OwnApplication;
class StatusBar;

/// The desktop as the program around inspect mode sees it.
struct ShellPlatform {
    const Platform& desktop;
    HotKeys& hotKeys;
    LocalEventMonitors& localEventMonitors;
    OwnApplication& application;
    StatusBar& statusBar;
};

} // namespace lumetry
