#include "platform/linux/applications/applications.h"

#include "base/text.h"
#include "platform/linux/applications/application_matcher.h"
#include "platform/linux/applications/browser_identifiers.h"
#include "platform/linux/system/process_info.h"

#include <utility>

namespace lumetry {
namespace {

constexpr std::size_t mostRemembered = 1000;

ActivationPolicy activationPolicyOf(const ProcessWindows& windows) {
    if (windows.inTaskBar) {
        return ActivationPolicy::regular;
    }
    return windows.any ? ActivationPolicy::accessory : ActivationPolicy::prohibited;
}

std::string programName(const ProcessInfo& process) {
    return validUtf8(process.executable.empty() ? process.shortName
                                                : process.executable.filename().string());
}

} // namespace

LinuxApplications::LinuxApplications(DesktopWindows& windows, SystemPlaces places)
    : windows_(windows), places_(std::move(places)),
      entries_(places_.dataFolders, places_.languages) {}

std::optional<RunningApplication> LinuxApplications::runningApplication(pid_t pid) {
    const auto start = processStart(places_.processes, pid);
    if (!start) {
        known_.erase(pid);
        return std::nullopt;
    }
    ProcessWindows windows = windows_.windowsOf(pid);
    auto known = known_.find(pid);
    if (known == known_.end() || known->second.start != *start ||
        known->second.windowClasses != windows.classes) {
        if (known_.size() >= mostRemembered) {
            known_.clear();
        }
        RunningApplication application = describe(pid, windows.classes);
        known = known_
                    .insert_or_assign(
                        pid, Known{*start, std::move(windows.classes), std::move(application)})
                    .first;
    }
    RunningApplication application = known->second.application;
    application.activationPolicy = activationPolicyOf(windows);
    return application;
}

RunningApplication LinuxApplications::describe(pid_t pid,
                                               const std::vector<std::string>& windowClasses) {
    if (entries_.refresh()) {
        known_.clear();
    }
    const ProcessInfo process = readProcess(places_.processes, pid);
    const ApplicationMatch match = matchApplication(process, windowClasses, entries_, places_);
    RunningApplication application;
    if (!match.id.empty()) {
        application.bundleIdentifier = validUtf8(commonIdentifier(match.id));
    }
    std::string name = match.entry != nullptr && !match.entry->name.empty() ? match.entry->name
                                                                            : programName(process);
    if (!name.empty()) {
        application.localizedName = std::move(name);
    }
    if (!process.executableFolder.empty()) {
        application.bundleLocation = process.executableFolder.string();
        application.chromiumLibrary = (process.executableFolder / "libGLESv2.so").string();
    }
    return application;
}

} // namespace lumetry
