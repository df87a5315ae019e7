#include "started_command.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
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

/// A process as /proc tells of it.
struct Process {
    pid_t parent = 0;
    bool ended = false; ///< and only waits for its parent to notice
};

std::optional<Process> processWith(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    // Its name, in parentheses, may have any characters.
    const auto end = std::getline(file, line) ? line.rfind(')') : std::string::npos;
    if (end == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream rest(line.substr(end + 1));
    char state = 0;
    Process process;
    rest >> state >> process.parent;
    process.ended = state == 'Z' || state == 'X';
    return process;
}

std::vector<pid_t> processesThat(const std::function<bool(pid_t)>& fit) {
    std::vector<pid_t> processes;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const auto pid =
            static_cast<pid_t>(std::strtol(entry.path().filename().c_str(), nullptr, 10));
        if (pid > 0 && fit(pid)) {
            processes.push_back(pid);
        }
    }
    return processes;
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
    // Whatever loses its parent below this program becomes this program's child.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    auto others = processesThat([](pid_t pid) {
        const auto process = processWith(pid);
        return process && process->parent == getpid();
    });
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
        _exit(write(failure[1], &error, sizeof error) > 0 ? 127 : 126);
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
    return std::unique_ptr<StartedCommand>(new StartedCommand(pid, std::move(others)));
}

StartedCommand::~StartedCommand() {
    constexpr int attempts = 3; // what starts others while it is killed leaves some
    signalAll(SIGTERM);
    for (int attempt = 0; attempt < attempts && !awaitEnd(); ++attempt) {
        signalAll(SIGKILL);
    }
}

void StartedCommand::signalAll(int signal) const {
    for (const pid_t pid : processesThat([this](pid_t pid) { return owns(pid); })) {
        kill(pid, signal);
    }
}

bool StartedCommand::awaitEnd() {
    constexpr auto pause = std::chrono::milliseconds(20);
    constexpr int patience = 100; // pauses
    for (int waited = 0; waited < patience && running(); ++waited) {
        std::this_thread::sleep_for(pause);
    }
    return !running();
}

bool StartedCommand::owns(pid_t pid) const {
    for (auto process = processWith(pid); process && !process->ended; process = processWith(pid)) {
        if (process->parent == getpid()) {
            return std::ranges::find(others_, pid) == others_.end();
        }
        pid = process->parent;
    }
    return false;
}

bool StartedCommand::running() {
    reap();
    return !processesThat([this](pid_t pid) { return owns(pid); }).empty();
}

void StartedCommand::reap() {
    int status = 0;
    for (pid_t pid = waitpid(-1, &status, WNOHANG); pid > 0; pid = waitpid(-1, &status, WNOHANG)) {
        if (pid == pid_) {
            ended_ = true;
            status_ = status;
        }
    }
}

std::string StartedCommand::ending() {
    reap();
    if (!ended_) {
        return "";
    }
    return WIFSIGNALED(status_) ? "was ended by signal " + std::to_string(WTERMSIG(status_))
                                : "ended with status " + std::to_string(WEXITSTATUS(status_));
}

} // namespace lumetry
