#pragma once

#include "platform/file_system.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace lumetry {

/// What a file holds, up to that many bytes. Absent when it cannot be read.
[[nodiscard]] std::optional<std::string> readFile(const std::filesystem::path& file,
                                                  std::size_t mostBytes);

/// The bundle that a program is the main one of: X.app for X.app/Contents/MacOS/PROGRAM. Empty for
/// programs anywhere else, in whatever folders named like bundles.
/// @param executable an absolute path
[[nodiscard]] std::filesystem::path bundleOf(const std::filesystem::path& executable);

/// The files of this machine.
class LinuxFileSystem final : public FileSystem {
public:
    [[nodiscard]] std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) override;
    [[nodiscard]] bool fileExists(const std::string& path) override;
    void appendPrivately(const std::string& path, std::string_view text) override;
};

} // namespace lumetry
