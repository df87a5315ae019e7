#pragma once

#include "platform/applications.h"
#include "platform/linux/applications/desktop_entries.h"
#include "platform/linux/system/system_places.h"
#include "platform/linux/windows/desktop_windows.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace lumetry {

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
