#include "support/fake_platform/fake_files.h"

#include <algorithm>

namespace lumetry {

void FakeFileSystem::addFile(const std::string& path) {
    files_.insert(path);
    std::string entry = path;
    for (auto slash = entry.rfind('/'); slash != std::string::npos; slash = entry.rfind('/')) {
        const std::string name = entry.substr(slash + 1);
        entry.erase(slash);
        auto& names = folders_[entry];
        if (std::ranges::find(names, name) == names.end()) {
            names.push_back(name);
        }
    }
}

std::optional<std::vector<std::string>>
FakeFileSystem::contentsOfDirectory(const std::string& path) {
    ++accesses;
    const auto found = folders_.find(path);
    return found == folders_.end() ? std::nullopt : std::optional(found->second);
}

bool FakeFileSystem::fileExists(const std::string& path) {
    ++accesses;
    return files_.contains(path) || folders_.contains(path);
}

} // namespace lumetry
