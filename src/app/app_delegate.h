#pragma once

#include "app/control_panel_window.h"
#include "app/hot_key.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "onboarding/onboarding_controller.h"
#include "platform/own_application.h"
#include "platform/shell_platform.h"
#include "platform/status_bar.h"
#include "probe/probe_state.h"
#include "session/overlay.h"

#include <memory>
#include <optional>

namespace lumetry {

/// How the windows of the program are made.
struct ShellWindows {
    OnboardingWindowMaker makeOnboarding;
    ControlPanelMaker makeControlPanel;
};

/// The program around inspect mode: status item, shortcut, the way through the permissions, and
/// what happens when the program is opened again. Made once by the entry point.
class AppDelegate final : public ApplicationDelegate {
public:
    /// All arguments outlive it.
    AppDelegate(const ShellPlatform& platform, ProbeState& state, ShellWindows windows);
    ~AppDelegate() override = default;

    void applicationDidFinishLaunching() override;
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
    /// Once nothing of it is on screen any more.
    bool applicationShouldTerminateAfterLastWindowClosed() override;
    void applicationWillTerminate() override;

    /// Inspect mode on or off; while the onboarding is on screen only its last step ends by it.
    void toggle();
    void startFromPanel();
    void quitFromPanel();

    /// Waits up to five minutes for the permission to read other applications.
    void watchForAccessibilityGrant();
    /// Ends the program and has it opened again. Does nothing where it is not in a bundle.
    void relaunchAfterGrant();
    void showControlPanel();

    [[nodiscard]] Overlay& overlay() { return overlay_; }
    [[nodiscard]] OnboardingController& onboarding() { return onboarding_; }

private:
    void installStatusItem();
    void wireCallbacks();
    void startOrOnboard();
    [[nodiscard]] bool permissionsReady();
    [[nodiscard]] bool isOnboarded();
    [[nodiscard]] bool isBundled();
    void checkTrust();

    const ShellPlatform& platform_;
    ProbeState& state_;
    ControlPanelMaker makeControlPanel_;

    Overlay overlay_;
    OnboardingController onboarding_;
    std::optional<HotKey> hotKey_;
    std::unique_ptr<StatusItem> statusItem_;
    Token trustTimer_;
    int trustTicks_ = 0;
    std::unique_ptr<ControlPanelWindow> controlWindow_;

    Lifetime lifetime_;
};

} // namespace lumetry
