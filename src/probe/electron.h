#pragma once

#include "platform/ax_ui_element.h"
#include "platform/platform.h"
#include "probe/probe_state.h"

#include <sys/types.h>

namespace lumetry {

/// Whether the application bundles Chromium, told by the GLES library that comes with it. The
/// first answer about a process is kept.
[[nodiscard]] bool isElectronApp(const Platform& platform, ProbeState& state, pid_t pid);

/// Asks a Chromium-based application to expose its element tree; at most once per 0.7 seconds and
/// process.
/// @param application the application element of that process
void wakeElectron(const Platform& platform, ProbeState& state, const AXUIElement& application,
                  pid_t pid);

/// Wakes every Chromium-based application that has a window on screen.
void wakeVisibleChromiumApps(const Platform& platform, ProbeState& state);

/// Takes the enhanced user interface back from every application that was woken, and forgets when
/// that was.
void releaseElectronEnhancements(const Platform& platform, ProbeState& state);

/// Whether the process is a web browser, by its bundle identifier.
[[nodiscard]] bool isBrowser(const Platform& platform, pid_t pid);

} // namespace lumetry
