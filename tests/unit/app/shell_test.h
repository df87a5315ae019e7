#pragma once

#include "app/app_delegate.h"
#include "support/fake_platform/fake_onboarding_window.h"
#include "support/fake_platform/fake_shell.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace lumetry {

/// A control panel that keeps what it was told.
class FakeControlPanel final : public ControlPanelWindow {
public:
    explicit FakeControlPanel(ControlPanelActions given) : actions(std::move(given)) {}

    void center() override { ++centered; }
    void makeKeyAndOrderFront() override { visible = true; }
    void orderOut() override { visible = false; }

    ControlPanelActions actions;
    bool visible = false;
    int centered = 0;
};

/// The whole program on a fake desktop.
class ShellTest : public testing::Test {
protected:
    void allow(bool accessibility, bool capture) { shell.allow(accessibility, capture); }
    void setOnboarded() { shell.desktop.defaults.setBool(true, onboardedKey); }
    void launch() {
        delegate->applicationDidFinishLaunching();
        advance(0.16);
    }
    void advance(double seconds) { shell.advance(seconds); }
    void pressShortcut() { shell.hotKeys.press({0, 1}); }
    [[nodiscard]] bool inspecting() { return delegate->overlay().active(); }
    [[nodiscard]] bool onboardingShown() { return delegate->onboarding().isWindowVisible(); }
    [[nodiscard]] OnboardingWindowRecord& onboarding() { return *onboardingWindows.at(0); }
    [[nodiscard]] FakeControlPanel& panel() { return *panels.at(0); }

    FakeShell shell;
    std::vector<std::shared_ptr<OnboardingWindowRecord>> onboardingWindows;
    std::vector<FakeControlPanel*> panels; ///< which the program owns
    std::unique_ptr<AppDelegate> delegate = std::make_unique<AppDelegate>(
        shell.platform, shell.desktop.state,
        ShellWindows{fakeOnboardingWindows(onboardingWindows),
                     [this](ControlPanelActions actions, const TemplateImage& /*icon*/) {
                         auto panel = std::make_unique<FakeControlPanel>(std::move(actions));
                         panels.push_back(panel.get());
                         return panel;
                     }});
};

} // namespace lumetry
