#pragma once

#include "platform/own_application.h"
#include "platform/shell_platform.h"

#include <memory>
#include <string>

namespace lumetry {

/// The desktop that this build of Lumetry is for, with windows, tray and shortcuts besides.
class NativeShell {
public:
    NativeShell() = default;
    NativeShell(const NativeShell&) = delete;
    NativeShell& operator=(const NativeShell&) = delete;
    virtual ~NativeShell() = default;

    /// Opens the desktop that this process runs on; once in a process. None when there is no such
    /// desktop, or when the program runs already and has been asked to come forward.
    /// @param problem one sentence that says what is missing and what to do; empty when the
    /// running program came forward
    [[nodiscard]] static std::unique_ptr<NativeShell> open(int& argc, char** argv,
                                                           std::string& problem);

    [[nodiscard]] virtual const ShellPlatform& platform() const = 0;
    /// Runs the program until it is terminated, asked to end, or the desktop goes away.
    /// @return the exit status of the process
    [[nodiscard]] virtual int run(ApplicationDelegate& delegate) = 0;
};

} // namespace lumetry
