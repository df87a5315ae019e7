#pragma once

#include "rig/processes/file_descriptor.h"
#include "rig/processes/wait_until.h"

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::desktop {

using Environment = std::map<std::string, std::string>;

/// The environment of this program itself.
[[nodiscard]] Environment ownEnvironment();

struct ProcessOptions {
    /// The whole environment of the program: nothing is added to it.
    Environment environment = ownEnvironment();
    /// Empty: the folder this program works in.
    std::filesystem::path workingFolder;
    /// Becomes standard input; -1 is /dev/null.
    int standardInput = -1;
    /// Stay open in the program under the same numbers.
    std::vector<int> inheritedDescriptors;
    /// Sent to the program when the thread that started it ends, however that comes about; 0 lets
    /// it live on.
    int deathSignal = SIGKILL;
};

/// How a program ended: by itself with a code, or by a signal.
struct ExitStatus {
    std::optional<int> code;
    std::optional<int> signal;
};

/// A started program in a process group of its own. What it writes is kept in memory. Ending the
/// object ends the program and its group.
class ChildProcess {
public:
    /// @param arguments the program (found as by requireProgram) and its arguments
    /// Throws std::runtime_error when it is not installed or cannot be started.
    explicit ChildProcess(const std::vector<std::string>& arguments,
                          const ProcessOptions& options = {});
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] bool running() { return !status(); }
    /// Absent while it runs.
    [[nodiscard]] std::optional<ExitStatus> status();
    /// Waits for it to end by itself; absent when it still runs at the deadline.
    [[nodiscard]] std::optional<ExitStatus>
    wait(std::chrono::milliseconds deadline = generousDeadline);

    /// Asks the group to end (SIGTERM), and kills it (SIGKILL) when it has not within the grace.
    void terminate(std::chrono::milliseconds grace = std::chrono::seconds(3));
    /// Freezes the whole group; returns once the program stands still.
    void stop();
    void resume() const;
    /// To the whole group.
    void signal(int number) const;

    /// Everything written so far.
    [[nodiscard]] std::string standardOutput() const;
    [[nodiscard]] std::string standardError() const;

private:
    std::string name_;
    FileDescriptor output_;
    FileDescriptor error_;
    pid_t pid_ = -1; ///< -1 once moved from
    std::optional<ExitStatus> status_;
};

/// What a program that ran to its end has left behind.
struct FinishedProgram {
    ExitStatus status;
    std::string output;
    std::string error;
};

/// Runs a program to its end. Throws std::runtime_error when it has not ended by the deadline.
[[nodiscard]] FinishedProgram runProgram(const std::vector<std::string>& arguments,
                                         const ProcessOptions& options = {},
                                         std::chrono::milliseconds deadline = generousDeadline);

} // namespace lumetry::desktop
