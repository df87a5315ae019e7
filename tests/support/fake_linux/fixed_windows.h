#pragma once

#include "platform/linux/windows/desktop_windows.h"

#include <map>
#include <optional>
#include <vector>

namespace lumetry::test {

/// Windows where a test puts them in accessibility space.
class FixedWindows final : public DesktopWindows {
public:
    std::vector<DesktopWindow> windows; ///< the topmost first
    std::map<pid_t, ProcessWindows> processes;
    RootSpace space;
    bool placesInWindows = false;

    [[nodiscard]] RootSpace rootSpace() override { return space; }
    [[nodiscard]] std::optional<DesktopWindow> windowAt(Point point,
                                                        std::optional<pid_t> pid) override {
        for (const DesktopWindow& window : windows) {
            if (window.bounds.contains(point) && (!pid || window.pid == pid)) {
                DesktopWindow found = window;
                found.bounds = space.toRoot(window.bounds);
                found.client = space.toRoot(window.client);
                return found;
            }
        }
        return std::nullopt;
    }
    [[nodiscard]] ProcessWindows windowsOf(pid_t pid) override { return processes[pid]; }
    [[nodiscard]] bool placesAreInWindows() const override { return placesInWindows; }
};

} // namespace lumetry::test
