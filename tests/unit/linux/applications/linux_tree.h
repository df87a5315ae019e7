#pragma once

#include "platform/linux/system/environment.h"

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace lumetry::test {

/// A process as a test wants the system to show it.
struct FakeProcess {
    pid_t pid = 100;
    std::filesystem::path executable = {};
    std::vector<std::string> arguments = {}; ///< with the program's name
    std::vector<std::string> environment = {};
    std::string controlGroup = "session-2.scope";
    pid_t parent = 1;
    std::string start = "5000";
};

/// The files that a system consists of here, in a folder of its own.
class LinuxTree {
public:
    LinuxTree();
    ~LinuxTree();
    LinuxTree(const LinuxTree&) = delete;
    LinuxTree& operator=(const LinuxTree&) = delete;

    /// Removes all but the folders that every system has.
    void clear() const;
    /// A place below the folder.
    [[nodiscard]] std::filesystem::path at(const std::string& path) const { return root_ / path; }
    void write(const std::string& path, const std::string& content) const;
    /// A file that can be run.
    [[nodiscard]] std::filesystem::path program(const std::string& path,
                                                const std::string& content = "\x7F"
                                                                             "ELF") const;
    /// A desktop entry in the system's folder.
    void entry(const std::string& id, const std::string& keys) const;
    void process(const FakeProcess& process) const;
    void endProcess(pid_t pid) const;

    [[nodiscard]] SystemPlaces places() const;

private:
    std::filesystem::path root_;
};

} // namespace lumetry::test
