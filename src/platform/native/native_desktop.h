#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace lumetry {

/// How often other processes have been asked so far.
struct RoundTrips {
    std::size_t accessibilityRequests = 0; ///< to applications, for their elements
    std::size_t accessibilityWaits = 0;    ///< fewer than requests where these went out together
    std::size_t windowSystem = 0;
};

/// The desktop that this build of Lumetry is for: all its ports, and the main thread's loop.
class NativeDesktop {
public:
    NativeDesktop() = default;
    NativeDesktop(const NativeDesktop&) = delete;
    NativeDesktop& operator=(const NativeDesktop&) = delete;
    virtual ~NativeDesktop() = default;

    /// Opens the desktop that this process runs on; once in a process. None when there is no such
    /// desktop.
    /// @param problem then one sentence that says what is missing and what to do
    [[nodiscard]] static std::unique_ptr<NativeDesktop> open(int& argc, char** argv,
                                                             std::string& problem);

    [[nodiscard]] virtual const Platform& platform() const = 0;

    /// Why other applications may not be read, and how to allow it, in one sentence; empty when
    /// they may.
    [[nodiscard]] virtual std::string trustProblem() = 0;

    /// Runs the loop until quit is called, the process is asked to end, or the desktop goes away.
    /// @return the exit status of the process
    [[nodiscard]] virtual int run() = 0;
    virtual void quit(int exitStatus) = 0;
    /// The signal by which the process was asked to end; absent while it was not. For those who
    /// are busy and do not run the loop: what is told here does not end it any more.
    [[nodiscard]] virtual std::optional<int> terminationSignal() = 0;

    [[nodiscard]] virtual RoundTrips roundTrips() const = 0;
};

} // namespace lumetry
