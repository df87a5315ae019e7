#pragma once

#include <filesystem>
#include <string>

namespace lumetry::kwin {

/// Writes a desktop entry for this program, and for the ones that are installed beside it, which
/// lets them read the pixels of windows, and be told which modifier keys are down: KWin answers
/// only to programs that an entry names by their paths. Installed programs have such entries
/// already.
/// @param dataFolder the user's, such as ~/.local/share
/// @return whether that could be done
bool permitScreenshots(const std::filesystem::path& dataFolder);

/// The user's folder for data ($XDG_DATA_HOME).
[[nodiscard]] std::filesystem::path userDataFolder();

} // namespace lumetry::kwin
