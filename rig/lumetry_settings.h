#pragma once

#include "rig/private_desktop.h"

#include <filesystem>

namespace lumetry::desktop {

/// The file in which Lumetry keeps its settings on that desktop.
[[nodiscard]] std::filesystem::path lumetrySettings(const PrivateDesktop& desktop);

/// Has Lumetry find that its onboarding was gone through.
void markOnboarded(const PrivateDesktop& desktop);
/// Has Lumetry write its detection log from its next start on.
void switchOnDetectLog(const PrivateDesktop& desktop);
/// Whether Lumetry has noted that its onboarding was gone through.
[[nodiscard]] bool isOnboarded(const PrivateDesktop& desktop);

} // namespace lumetry::desktop
