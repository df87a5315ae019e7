#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

namespace lumetry {

/// A program that was started to be audited, with whatever it starts itself, in a session of its
/// own. Ended with the object.
class StartedCommand {
public:
    /// What it prints goes to standard error.
    /// @param problem why it cannot be started, in one sentence; then there is none
    [[nodiscard]] static std::unique_ptr<StartedCommand>
    start(const std::vector<std::string>& command, std::string& problem);
    StartedCommand(const StartedCommand&) = delete;
    StartedCommand& operator=(const StartedCommand&) = delete;
    ~StartedCommand();

    /// Whether the process is the program's own or one that it has started.
    [[nodiscard]] bool owns(pid_t pid) const;
    /// How the program has ended, in words; empty while it runs.
    [[nodiscard]] std::string ending();

private:
    explicit StartedCommand(pid_t pid) : pid_(pid) {}

    pid_t pid_;
    bool ended_ = false;
    int status_ = 0;
};

} // namespace lumetry
