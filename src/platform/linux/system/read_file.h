#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace lumetry {

/// What a file holds, up to that many bytes. Absent when it cannot be read.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& file,
                                                  std::size_t mostBytes);

} // namespace lumetry
