#pragma once

#include "platform/applications.h"
#include "platform/defaults.h"
#include "platform/file_system.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumetry {

/// Files, and the folders on the way to them, which list their entries by name.
class FakeFileSystem final : public FileSystem {
public:
    [[nodiscard]] std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) override {
        ++accesses;
        std::set<std::string> names;
        for (const std::string& file : files) {
            if (file.starts_with(path + "/")) {
                const std::string below = file.substr(path.size() + 1);
                names.insert(below.substr(0, below.find('/')));
            }
        }
        return names.empty() ? std::nullopt
                             : std::optional(std::vector(names.begin(), names.end()));
    }
    [[nodiscard]] bool fileExists(const std::string& path) override {
        ++accesses;
        return files.contains(path);
    }
    void appendPrivately(const std::string& path, std::string_view text) override {
        appended[path] += text;
    }

    std::set<std::string> files; ///< absolute paths
    int accesses = 0;
    std::map<std::string, std::string> appended; ///< text by file
};

class FakeApplications final : public Applications {
public:
    [[nodiscard]] std::optional<RunningApplication> runningApplication(pid_t pid) override {
        const auto found = running.find(pid);
        return found == running.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<pid_t, RunningApplication> running;
};

class FakeDefaults final : public Defaults {
public:
    [[nodiscard]] bool boolForKey(std::string_view key) override {
        const auto found = values.find(key);
        return found != values.end() && found->second;
    }
    void setBool(bool value, std::string_view key) override {
        values.insert_or_assign(std::string(key), value);
    }

    std::map<std::string, bool, std::less<>> values;
};

} // namespace lumetry
