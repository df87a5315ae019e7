#pragma once

#include "measured_desktop.h"

#include <string>

namespace lumetry::desktop {

/// A page with a button, a heading and a list.
[[nodiscard]] const std::string& pricesPage();

/// Waits until a browser shows that page over the whole screen, and checks what is said of it.
/// @param buttonFont what is said of the button's font: not every browser tells its weight
void expectPricesPage(const MeasuredDesktop& measured, const std::string& buttonFont);

} // namespace lumetry::desktop
