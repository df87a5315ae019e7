#pragma once

#include "rig/processes/child_process.h"
#include "rig/processes/file_descriptor.h"

#include <sys/types.h>

#include <filesystem>

namespace lumetry::desktop {

/// The folder of a private desktop, and a watching process that ends all of the desktop's programs
/// and removes the folder: when this object is destroyed, or when this program is gone.
class DesktopGuard {
public:
    DesktopGuard();
    ~DesktopGuard();
    DesktopGuard(const DesktopGuard&) = delete;
    DesktopGuard& operator=(const DesktopGuard&) = delete;

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
    /// A process group of the desktop, to be ended with it.
    void watch(pid_t group) const;
    /// Ends the desktop, unless that has been done; returns when everything is gone.
    void endDesktop();

private:
    std::filesystem::path folder_;
    Pipe orders_;
    ChildProcess process_;
};

} // namespace lumetry::desktop
