#pragma once

#include "platform/linux/lock/lock_watch.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <memory>

namespace lumetry {

/// Watches what the services that lock the screen say on the session bus
/// (org.freedesktop.ScreenSaver) and on the system bus (the LockedHint of logind's session). Where
/// a bus or a service is missing, or does not answer in a moment, it is not taken to be locked.
/// @param watcher outlives the watch
[[nodiscard]] std::unique_ptr<LockWatch> watchLockServices(FileDescriptorWatcher& watcher);

} // namespace lumetry
