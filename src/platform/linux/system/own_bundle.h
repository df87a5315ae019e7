#pragma once

#include <filesystem>

namespace lumetry {

/// The bundle that a program is the main one of: X.app for X.app/Contents/MacOS/PROGRAM. Empty for
/// programs anywhere else, in whatever folders named like bundles.
/// @param executable an absolute path
[[nodiscard]] std::filesystem::path bundleOf(const std::filesystem::path& executable);

} // namespace lumetry
