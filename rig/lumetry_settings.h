#pragma once

#include "rig/desktop_session.h"

#include <filesystem>

namespace lumetry::desktop {

/// The file in which Lumetry keeps its settings on that desktop.
[[nodiscard]] std::filesystem::path lumetrySettings(const DesktopSession& desktop);

/// Has Lumetry find that its onboarding was gone through.
void markOnboarded(const DesktopSession& desktop);
/// Has Lumetry write its detection log from its next start on.
void switchOnDetectLog(const DesktopSession& desktop);
/// Whether Lumetry has noted that its onboarding was gone through.
[[nodiscard]] bool isOnboarded(const DesktopSession& desktop);

} // namespace lumetry::desktop
