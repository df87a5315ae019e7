#pragma once

#include "onboarding/onboarding_window.h"

#include <memory>

namespace lumetry {

/// The onboarding window in Qt's widgets, hidden. Needs a QApplication.
/// @param actions outlive it
[[nodiscard]] std::unique_ptr<OnboardingWindow> makeOnboardingWindow(OnboardingActions& actions);

} // namespace lumetry
