#pragma once

#include <optional>
#include <string>
#include <vector>

namespace lumetry {

class FileSystem {
public:
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;
    virtual ~FileSystem() = default;

    /// The names in a folder, in the order the platform lists them, without "." and ".."
    /// (FileManager.contentsOfDirectory(atPath:)). Absent when it cannot be listed.
    [[nodiscard]] virtual std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) = 0;
    /// Whether there is a file or folder at the path (FileManager.fileExists(atPath:)).
    [[nodiscard]] virtual bool fileExists(const std::string& path) = 0;
};

} // namespace lumetry
