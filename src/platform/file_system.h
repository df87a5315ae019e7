#pragma once

#include <optional>
#include <string>
#include <string_view>
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
    /// Adds the text to the end of a file of the user's own, which is made readable by its owner
    /// only where there is none (NSFileHandle.seekToEndOfFile and writeData). Follows no symbolic
    /// link. When the file cannot be written, nothing happens.
    virtual void appendPrivately(const std::string& path, std::string_view text) = 0;
};

} // namespace lumetry
