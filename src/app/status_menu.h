#pragma once

#include "platform/status_bar.h"

#include <functional>
#include <vector>

namespace lumetry {

/// The program's mark at the size of the status bar: four corners around a dimension marker.
[[nodiscard]] TemplateImage statusBarIcon();

/// The menu of the status item.
[[nodiscard]] std::vector<MenuItem> statusMenu(std::function<void()> toggle,
                                               std::function<void()> quit);

} // namespace lumetry
