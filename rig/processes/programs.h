#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace lumetry::desktop {

/// The file a program's name stands for: the name itself when it holds a slash, else the first
/// executable file of that name in PATH. Absent when there is none.
[[nodiscard]] std::optional<std::filesystem::path> findProgram(const std::string& name);

/// The same; throws std::runtime_error naming the program, and the Debian package it comes in when
/// that is known.
[[nodiscard]] std::filesystem::path requireProgram(const std::string& name);

} // namespace lumetry::desktop
