#pragma once

#include "album.h"

#include <string>

namespace lumetry::desktop {

/// The pictures of the program around inspect mode: the onboarding's steps with every state of its
/// cards, the control panel, and the menu in a tray of either kind. Throws std::runtime_error when
/// something does not come up.
void tourShell(const std::string& lumetry, Album& album);

} // namespace lumetry::desktop
