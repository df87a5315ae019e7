#pragma once

#include "platform/applications.h"
#include "platform/linux/applications/desktop_entries.h"
#include "platform/linux/system/environment.h"
#include "platform/linux/windows/desktop_windows.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// A browser as it is packaged, and the identifier under which it is known everywhere.
struct PackagedBrowser {
    std::string_view desktopId;
    std::string_view identifier;
};
[[nodiscard]] std::span<const PackagedBrowser> packagedBrowsers();

/// The identifier under which a browser is known everywhere, for the many under which it is
/// packaged; any other application keeps the one it has.
[[nodiscard]] std::string commonIdentifier(std::string_view desktopId);

/// Running applications, from the system's processes and the desktop entries.
class LinuxApplications final : public Applications {
public:
    /// @param windows outlives it
    explicit LinuxApplications(DesktopWindows& windows,
                               SystemPlaces places = SystemPlaces::fromEnvironment());

    [[nodiscard]] std::optional<RunningApplication> runningApplication(pid_t pid) override;

private:
    /// What was found about a process, and what it was found by.
    struct Known {
        std::uint64_t start = 0;
        std::vector<std::string> windowClasses;
        RunningApplication application;
    };

    [[nodiscard]] RunningApplication describe(pid_t pid,
                                              const std::vector<std::string>& windowClasses);

    DesktopWindows& windows_;
    SystemPlaces places_;
    DesktopEntries entries_;
    std::map<pid_t, Known> known_;
};

} // namespace lumetry
