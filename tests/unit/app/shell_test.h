#pragma once

#include "app/app_delegate.h"
#include "support/fake_platform/fake_onboarding_window.h"
#include "support/fake_platform/fake_shell.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace lumetry {

/// What a control panel was told, and a hand to use it.
struct ControlPanelRecord {
    ControlPanelActions actions;
    bool visible = false;
    int centered = 0;
};

class FakeControlPanel final : public ControlPanelWindow {
public:
    explicit FakeControlPanel(std::shared_ptr<ControlPanelRecord> record)
        : record_(std::move(record)) {}

    void center() override { ++record_->centered; }
    void makeKeyAndOrderFront() override { record_->visible = true; }
    void orderOut() override { record_->visible = false; }

private:
    std::shared_ptr<ControlPanelRecord> record_;
};

/// The whole program on a fake desktop.
class ShellTest : public testing::Test {
protected:
    static constexpr double launchDelay = 0.16;

    void allow(bool accessibility, bool capture) { shell.allow(accessibility, capture); }
    void setOnboarded() { shell.desktop.defaults.setBool(true, onboardedKey); }
    void launch() {
        delegate->applicationDidFinishLaunching();
        advance(launchDelay);
    }
    void advance(double seconds) { shell.advance(seconds); }
    void pressShortcut() { shell.hotKeys.press({0, 1}); }
    [[nodiscard]] bool inspecting() { return delegate->overlay().active(); }
    [[nodiscard]] bool onboardingShown() { return delegate->onboarding().isWindowVisible(); }
    [[nodiscard]] OnboardingWindowRecord& onboarding() { return *onboardingWindows.at(0); }
    [[nodiscard]] ControlPanelRecord& panel() { return *panels.at(0); }

    FakeShell shell;
    std::vector<std::shared_ptr<OnboardingWindowRecord>> onboardingWindows;
    std::vector<std::shared_ptr<ControlPanelRecord>> panels;
    std::unique_ptr<AppDelegate> delegate = std::make_unique<AppDelegate>(
        shell.platform, shell.desktop.state,
        ShellWindows{fakeOnboardingWindows(onboardingWindows),
                     [this](ControlPanelActions actions, const TemplateImage& /*icon*/) {
                         panels.push_back(std::make_shared<ControlPanelRecord>());
                         panels.back()->actions = std::move(actions);
                         return std::make_unique<FakeControlPanel>(panels.back());
                     }});
};

} // namespace lumetry
