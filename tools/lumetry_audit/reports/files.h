#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace lumetry {

/// What is in a file; absent when it cannot be read.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& file);

/// Writes a file as a whole: nothing is lost of one that is there before when that fails, and two
/// that write at a time do not mix. What is no ordinary file, such as a pipe, is written to.
/// @param problem then why not, in one sentence
[[nodiscard]] bool writeFile(const std::filesystem::path& file, const std::string& contents,
                             std::string& problem);

} // namespace lumetry
