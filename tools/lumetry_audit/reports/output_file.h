#pragma once

#include <filesystem>
#include <string>

namespace lumetry {

/// Writes a file as a whole: nothing is lost of one that is there before when that fails, and two
/// that write at a time do not mix.
/// @param problem then why not, in one sentence
[[nodiscard]] bool writeFile(const std::filesystem::path& file, const std::string& contents,
                             std::string& problem);

} // namespace lumetry
