#pragma once

#include "platform/applications.h"
#include "platform/picture_capture.h"
#include "platform/platform.h"

namespace lumetry {

/// The desktop as an audit sees it: the screen is one picture of the window, taken at the start,
/// and a web browser is an application like others, since its page is what is to be measured.
class AuditedPlatform {
public:
    AuditedPlatform(const Platform& platform, PictureCapture& picture)
        : applications_(platform.applications), platform_{
                                                    platform.accessibility,  platform.windowServer,
                                                    platform.pointer,        platform.eventMonitors,
                                                    applications_,           platform.fileSystem,
                                                    platform.runLoop,        platform.defaults,
                                                    platform.overlayWindows, picture,
                                                    platform.screenLock} {}
    AuditedPlatform(const AuditedPlatform&) = delete;
    AuditedPlatform& operator=(const AuditedPlatform&) = delete;
    ~AuditedPlatform() = default;

    [[nodiscard]] const Platform& platform() const { return platform_; }

private:
    class NamelessApplications final : public Applications {
    public:
        explicit NamelessApplications(Applications& inner) : inner_(inner) {}
        [[nodiscard]] std::optional<RunningApplication> runningApplication(pid_t pid) override {
            auto application = inner_.runningApplication(pid);
            if (application) {
                application->bundleIdentifier.reset();
            }
            return application;
        }

    private:
        Applications& inner_;
    };

    NamelessApplications applications_;
    Platform platform_;
};

} // namespace lumetry
