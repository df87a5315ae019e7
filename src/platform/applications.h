#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace lumetry {

/// How an application shows itself (NSApplication.ActivationPolicy).
enum class ActivationPolicy {
    regular = 0,    ///< has windows of its own in the task bar or dock
    accessory = 1,  ///< has windows, but no place there
    prohibited = 2, ///< shows nothing
};

/// A process that runs as an application (NSRunningApplication).
struct RunningApplication {
    /// Its reverse-DNS name; absent where nothing names it.
    std::optional<std::string> bundleIdentifier;
    /// The absolute path of its bundle, or of the folder of its executable where applications are
    /// not bundled; absent when that cannot be read.
    std::optional<std::string> bundleLocation;
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    /// The name that its user knows; absent where it has none.
    std::optional<std::string> localizedName;
    /// One more file whose existence shows that the application bundles Chromium, for platforms
    /// where that is not to be seen from the bundle's layout.
    std::optional<std::string> chromiumLibrary;
};

class Applications {
public:
    Applications() = default;
    Applications(const Applications&) = delete;
    Applications& operator=(const Applications&) = delete;
    virtual ~Applications() = default;

    /// The running application with that process identifier
    /// (NSRunningApplication.runningApplicationWithProcessIdentifier). Absent when there is none.
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(pid_t pid) = 0;
};

} // namespace lumetry
