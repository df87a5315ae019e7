#include "support/fake_platform/fake_onboarding_window.h"

namespace lumetry {

void OnboardingWindowRecord::close() {
    if (visible) {
        visible = inFront = false;
        actions->windowWillClose();
    }
}

void FakeOnboardingWindow::showStep(OnboardingStep step, bool animated) {
    record_->step = step;
    record_->animated = animated;
    record_->keys.clear();
    record_->nudge.clear();
}

void FakeOnboardingWindow::setPrimary(const std::string& title, bool enabled) {
    record_->primary = title;
    record_->primaryEnabled = enabled;
}

OnboardingWindowMaker
fakeOnboardingWindows(std::vector<std::shared_ptr<OnboardingWindowRecord>>& made) {
    return [&made](OnboardingActions& actions) {
        made.push_back(std::make_shared<OnboardingWindowRecord>());
        made.back()->actions = &actions;
        return std::make_unique<FakeOnboardingWindow>(made.back());
    };
}

} // namespace lumetry
