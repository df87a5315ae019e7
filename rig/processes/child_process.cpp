#include "rig/processes/child_process.h"

#include "rig/processes/process_table.h"
#include "rig/processes/programs.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace lumetry::desktop {
namespace {

[[noreturn]] void throwLastError(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

FileDescriptor memoryFile(const char* name) {
    FileDescriptor file(memfd_create(name, MFD_CLOEXEC));
    if (file.get() < 0) {
        throwLastError("memfd_create");
    }
    return file;
}

std::string contentsOf(const FileDescriptor& file) {
    std::string text;
    std::array<char, 4096> part{};
    for (;;) {
        const auto count =
            pread(file.get(), part.data(), part.size(), static_cast<off_t>(text.size()));
        if (count <= 0) {
            return text;
        }
        text.append(part.data(), static_cast<std::size_t>(count));
    }
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (auto& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> asLines(const Environment& environment) {
    std::vector<std::string> lines;
    lines.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        lines.push_back(name);
        lines.back() += '=';
        lines.back() += value;
    }
    return lines;
}

/// All that the new process needs between fork and exec, where no memory may be allocated.
struct Launch {
    const char* program;
    char* const* arguments;
    char* const* environment;
    const char* workingFolder;
    const ProcessOptions& options;
    int output;
    int error;
    int failures;
    pid_t parent;
};

void resetSignals() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGCHLD}) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-cstyle-cast, performance-no-int-to-ptr)
        ::signal(number, SIG_DFL);
    }
}

bool prepareDescriptors(const Launch& launch) {
    const int input = launch.options.standardInput >= 0 ? launch.options.standardInput
                                                        : open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (dup2(input, STDIN_FILENO) < 0 || dup2(launch.output, STDOUT_FILENO) < 0 ||
        dup2(launch.error, STDERR_FILENO) < 0) {
        return false;
    }
    return std::ranges::all_of(launch.options.inheritedDescriptors,
                               [](int descriptor) { return fcntl(descriptor, F_SETFD, 0) == 0; });
}

[[noreturn]] void becomeProgram(const Launch& launch) {
    setpgid(0, 0);
    resetSignals();
    if (launch.options.deathSignal != 0) {
        prctl(PR_SET_PDEATHSIG, launch.options.deathSignal);
        if (getppid() != launch.parent) {
            _exit(127);
        }
    }
    const bool ready = prepareDescriptors(launch) &&
                       (launch.workingFolder == nullptr || chdir(launch.workingFolder) == 0);
    if (ready) {
        execve(launch.program, launch.arguments, launch.environment);
    }
    const int failure = errno;
    [[maybe_unused]] const auto written = write(launch.failures, &failure, sizeof failure);
    _exit(127);
}

} // namespace

Environment ownEnvironment() {
    Environment environment;
    for (char** line = environ; *line; ++line) {
        const std::string text = *line;
        const auto equals = text.find('=');
        environment[text.substr(0, equals)] =
            equals == std::string::npos ? std::string() : text.substr(equals + 1);
    }
    return environment;
}

ChildProcess::ChildProcess(const std::vector<std::string>& arguments, const ProcessOptions& options)
    : name_(arguments.at(0)), output_(memoryFile("output")), error_(memoryFile("error")) {
    const auto program = requireProgram(name_).string();
    auto argumentTexts = arguments;
    auto environmentTexts = asLines(options.environment);
    const auto argumentPointers = pointersTo(argumentTexts);
    const auto environmentPointers = pointersTo(environmentTexts);
    auto failures = makePipe();
    const Launch launch = {program.c_str(),
                           argumentPointers.data(),
                           environmentPointers.data(),
                           options.workingFolder.empty() ? nullptr : options.workingFolder.c_str(),
                           options,
                           output_.get(),
                           error_.get(),
                           failures.writeEnd.get(),
                           getpid()};
    pid_ = fork();
    if (pid_ < 0) {
        throwLastError("fork");
    }
    if (pid_ == 0) {
        becomeProgram(launch);
    }
    // In both processes, so that the group exists whoever runs first.
    setpgid(pid_, pid_);
    failures.writeEnd.reset();
    int failure = 0;
    if (read(failures.readEnd.get(), &failure, sizeof failure) == sizeof failure) {
        waitpid(pid_, nullptr, 0);
        throw std::system_error(failure, std::generic_category(), "starting " + program);
    }
}

ChildProcess::~ChildProcess() {
    if (pid_ >= 0) {
        terminate();
    }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : name_(std::move(other.name_)), output_(std::move(other.output_)),
      error_(std::move(other.error_)), pid_(std::exchange(other.pid_, -1)), status_(other.status_) {
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(name_, other.name_);
    std::swap(output_, other.output_);
    std::swap(error_, other.error_);
    std::swap(pid_, other.pid_);
    std::swap(status_, other.status_);
    return *this;
}

std::optional<ExitStatus> ChildProcess::status() {
    int value = 0;
    if (!status_ && waitpid(pid_, &value, WNOHANG) == pid_) {
        status_.emplace();
        if (WIFEXITED(value)) {
            status_->code = WEXITSTATUS(value);
        } else {
            status_->signal = WTERMSIG(value);
        }
    }
    return status_;
}

std::optional<ExitStatus> ChildProcess::wait(std::chrono::milliseconds deadline) {
    return waitUntil([this] { return status(); }, deadline);
}

void ChildProcess::terminate(std::chrono::milliseconds grace) {
    if (!running()) {
        return;
    }
    signal(SIGTERM);
    signal(SIGCONT);
    if (!wait(grace)) {
        signal(SIGKILL);
        [[maybe_unused]] const auto ended = wait();
    }
}

void ChildProcess::stop() {
    signal(SIGSTOP);
    requireUntil(name_ + " to stand still", [this] {
        return std::ranges::any_of(processTable(), [this](const ProcessEntry& entry) {
            return entry.pid == pid_ && entry.state == 'T';
        });
    });
}

void ChildProcess::resume() const {
    signal(SIGCONT);
}

void ChildProcess::signal(int number) const {
    // Once collected, the number may belong to somebody else.
    if (!status_) {
        kill(-pid_, number);
    }
}

std::string ChildProcess::standardOutput() const {
    return contentsOf(output_);
}

std::string ChildProcess::standardError() const {
    return contentsOf(error_);
}

FinishedProgram runProgram(const std::vector<std::string>& arguments, const ProcessOptions& options,
                           std::chrono::milliseconds deadline) {
    ChildProcess process(arguments, options);
    const auto status = process.wait(deadline);
    if (!status) {
        throw std::runtime_error(process.name() + " has not ended in time; it wrote: " +
                                 process.standardOutput() + process.standardError());
    }
    return {*status, process.standardOutput(), process.standardError()};
}

} // namespace lumetry::desktop
