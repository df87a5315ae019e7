#include "platform/linux/linux_file_system.h"

#include <filesystem>
#include <system_error>

namespace lumetry {

std::optional<std::vector<std::string>>
LinuxFileSystem::contentsOfDirectory(const std::string& path) {
    std::error_code error;
    std::vector<std::string> names;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    return error ? std::nullopt : std::optional(std::move(names));
}

bool LinuxFileSystem::fileExists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

} // namespace lumetry
