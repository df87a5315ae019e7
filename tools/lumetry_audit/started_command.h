#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {

/// A program that was started to be audited, with whatever it starts itself, in a session of its
/// own. Ended with the object. At most one at a time.
class StartedCommand {
public:
    /// What it prints goes to standard error.
    /// @param problem why it cannot be started, in one sentence; then there is none
    [[nodiscard]] static std::unique_ptr<StartedCommand>
    start(const std::vector<std::string>& command, std::string& problem);
    StartedCommand(const StartedCommand&) = delete;
    StartedCommand& operator=(const StartedCommand&) = delete;
    ~StartedCommand();

    /// Whether the process is the program's own or one that it has started, directly or not.
    [[nodiscard]] bool owns(pid_t pid) const;
    /// Whether any process that it owns is left.
    [[nodiscard]] bool running();
    /// How the program itself has ended, in words; empty while it runs.
    [[nodiscard]] std::string ending();

private:
    StartedCommand(pid_t pid, std::vector<pid_t> others) : pid_(pid), others_(std::move(others)) {}
    void signalAll(int signal) const;
    /// Whether all have ended before the patience has.
    bool awaitEnd();
    /// Takes notice of those that have ended.
    void reap();

    pid_t pid_;
    std::vector<pid_t> others_; ///< this program's children that were there before
    bool ended_ = false;
    int status_ = 0;
};

} // namespace lumetry
