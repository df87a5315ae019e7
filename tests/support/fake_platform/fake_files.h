#pragma once

#include "platform/applications.h"
#include "platform/defaults.h"
#include "platform/file_system.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace lumetry {

/// Files in folders that list their entries in the order in which these were added.
class FakeFileSystem final : public FileSystem {
public:
    /// Adds a file, and the folders on the way to it that are missing.
    /// @param path absolute
    void addFile(const std::string& path);

    [[nodiscard]] std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) override;
    [[nodiscard]] bool fileExists(const std::string& path) override;
    void appendPrivately(const std::string& path, std::string_view text) override {
        appended[path] += text;
    }

    int accesses = 0;
    std::map<std::string, std::string> appended; ///< text by file

private:
    std::map<std::string, std::vector<std::string>> folders_;
    std::set<std::string> files_;
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
