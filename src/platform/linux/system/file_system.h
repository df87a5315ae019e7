#pragma once

#include "platform/file_system.h"

namespace lumetry {

/// The files of this machine.
class LinuxFileSystem final : public FileSystem {
public:
    [[nodiscard]] std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) override;
    [[nodiscard]] bool fileExists(const std::string& path) override;
    void appendPrivately(const std::string& path, std::string_view text) override;
};

} // namespace lumetry
