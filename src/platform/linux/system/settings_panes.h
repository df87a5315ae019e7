#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// The program, and its arguments, that shows what a settings address names; empty where the
/// desktop has none for it.
/// @param address such as "x-apple.systempreferences:PANE?ANCHOR"
/// @param desktops $XDG_CURRENT_DESKTOP
/// @param isInstalled whether a program of that name can be started
[[nodiscard]] std::vector<std::string>
settingsPaneCommand(std::string_view address, std::string_view desktops,
                    const std::function<bool(const std::string&)>& isInstalled);

} // namespace lumetry
