#include "started_command.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <thread>

namespace lumetry {
namespace {

/// Its arguments as the system wants them; valid as long as the texts are.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// Processes of a session, also those that have left its first process group.
std::vector<pid_t> processesOf(pid_t session) {
    std::vector<pid_t> processes;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const auto pid =
            static_cast<pid_t>(std::strtol(entry.path().filename().c_str(), nullptr, 10));
        if (pid > 0 && getsid(pid) == session) {
            processes.push_back(pid);
        }
    }
    return processes;
}

void signalAll(pid_t session, int signal) {
    for (const pid_t process : processesOf(session)) {
        kill(process, signal);
    }
}

} // namespace

std::unique_ptr<StartedCommand> StartedCommand::start(const std::vector<std::string>& command,
                                                      std::string& problem) {
    std::vector<std::string> texts = command;
    const auto arguments = pointersTo(texts);
    // Closed by a program that starts; else it says why none did.
    std::array<int, 2> failure{};
    if (pipe2(failure.data(), O_CLOEXEC) != 0) {
        problem = command.front() + " cannot be started: " + std::strerror(errno) + ".";
        return nullptr;
    }
    const pid_t pid = fork();
    if (pid == 0) {
        setsid();
        // What this program does with signals is no concern of the other's.
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
        dup2(STDERR_FILENO, STDOUT_FILENO);
        execvp(arguments.front(), arguments.data());
        const int error = errno;
        static_cast<void>(!write(failure[1], &error, sizeof error));
        _exit(127);
    }
    close(failure[1]);
    int error = pid < 0 ? errno : 0;
    if (pid > 0 && read(failure[0], &error, sizeof error) != sizeof error) {
        error = 0;
    }
    close(failure[0]);
    if (error != 0) {
        if (pid > 0) {
            waitpid(pid, nullptr, 0);
        }
        problem = command.front() + " cannot be started: " + std::strerror(error) + ".";
        return nullptr;
    }
    return std::unique_ptr<StartedCommand>(new StartedCommand(pid));
}

StartedCommand::~StartedCommand() {
    constexpr auto pause = std::chrono::milliseconds(20);
    constexpr int patience = 100; // pauses
    signalAll(pid_, SIGTERM);
    for (int waited = 0; waited < patience; ++waited) {
        static_cast<void>(ending());
        if (processesOf(pid_).empty()) {
            return;
        }
        std::this_thread::sleep_for(pause);
    }
    signalAll(pid_, SIGKILL);
    if (!ended_) {
        waitpid(pid_, nullptr, 0);
    }
}

bool StartedCommand::owns(pid_t pid) const {
    return getsid(pid) == pid_;
}

std::string StartedCommand::ending() {
    ended_ = ended_ || waitpid(pid_, &status_, WNOHANG) == pid_;
    if (!ended_) {
        return "";
    }
    return WIFSIGNALED(status_) ? "was ended by signal " + std::to_string(WTERMSIG(status_))
                                : "ended with status " + std::to_string(WEXITSTATUS(status_));
}

} // namespace lumetry
