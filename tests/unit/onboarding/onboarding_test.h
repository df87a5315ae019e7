#pragma once

#include "onboarding/onboarding_controller.h"
#include "support/fake_platform/fake_onboarding_window.h"
#include "support/fake_platform/fake_shell.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace lumetry {

/// The onboarding on a fake desktop.
class OnboardingTest : public testing::Test {
protected:
    OnboardingTest() {
        controller->onStart = [this] { ++starts; };
        controller->onReopen = [this] { ++reopens; };
    }

    [[nodiscard]] OnboardingWindowRecord& window() { return *windows.at(0); }
    [[nodiscard]] OnboardingActions& user() { return *window().actions; }
    void allow(bool accessibility, bool capture) { shell.allow(accessibility, capture); }
    void advance(double seconds) { shell.advance(seconds); }
    EventFate key(EventType type, std::uint16_t keyCode, ModifierFlags flags = 0) {
        Event event;
        event.type = type;
        event.keyCode = keyCode;
        event.modifierFlags = flags;
        return shell.localEventMonitors.fire(event);
    }
    [[nodiscard]] std::size_t monitors() const {
        return shell.localEventMonitors.monitors.all().size();
    }

    FakeShell shell;
    std::vector<std::shared_ptr<OnboardingWindowRecord>> windows;
    std::unique_ptr<OnboardingController> controller =
        std::make_unique<OnboardingController>(shell.platform, fakeOnboardingWindows(windows));
    int starts = 0;
    int reopens = 0;
};

} // namespace lumetry
