#pragma once

namespace lumetry::atspi {

/// Has the desktop switch accessibility on at every login, where it has a setting for that.
void keepToolkitAccessibility();

} // namespace lumetry::atspi
