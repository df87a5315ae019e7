#include "onboarding/onboarding_controller.h"

#include "platform/accessibility.h"
#include "platform/defaults.h"
#include "platform/own_application.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"

#include <algorithm>
#include <utility>

namespace lumetry {
namespace {

constexpr double refreshSeconds = 1.0;
constexpr double startDelaySeconds = 0.5;
constexpr int lastStep = onboardingStepCount - 1;

} // namespace

OnboardingController::OnboardingController(const ShellPlatform& platform,
                                           OnboardingWindowMaker makeWindow)
    : platform_(platform), makeWindow_(std::move(makeWindow)) {}

void OnboardingController::show() {
    build();
    beginDockPresence();
    if (!isWindowVisible()) {
        const bool welcomed = platform_.desktop.defaults.boolForKey(onboardedKey) ||
                              platform_.desktop.accessibility.isProcessTrusted();
        setStep(welcomed ? 1 : 0, false);
        window_->center();
    }
    present();
}

void OnboardingController::showTakeoff() {
    build();
    beginDockPresence();
    setStep(lastStep, false);
    window_->center();
    present();
}

void OnboardingController::build() {
    if (!window_) {
        window_ = makeWindow_(*this);
    }
}

void OnboardingController::present() {
    refresh();
    window_->makeKeyAndOrderFront();
    platform_.application.activateIgnoringOtherApps();
    timer_ =
        platform_.desktop.runLoop.every(refreshSeconds, lifetime_.guard([this] { refresh(); }));
}

void OnboardingController::beginDockPresence() {
    platform_.application.setActivationPolicy(ActivationPolicy::regular);
    if (activeObserver_) {
        return;
    }
    activeObserver_ = platform_.application.addDidBecomeActiveObserver(lifetime_.guard([this] {
        if (isWindowVisible()) {
            refresh();
            window_->makeKeyAndOrderFront();
        }
    }));
}

void OnboardingController::windowWillClose() {
    timer_.reset();
    removeTakeoffMonitors();
    activeObserver_.reset();
    platform_.application.setActivationPolicy(ActivationPolicy::accessory);
}

void OnboardingController::setStep(int step, bool animated) {
    step_ = std::clamp(step, 0, lastStep);
    completing_ = false;
    removeTakeoffMonitors();
    window_->showStep(static_cast<OnboardingStep>(step_), animated);
    refresh();
    if (step_ == lastStep) {
        installTakeoffMonitors();
    }
}

void OnboardingController::primaryTapped() {
    if (primaryIsReopen_) {
        if (onReopen) {
            onReopen();
        }
    } else if (step_ > 1) {
        complete();
    } else {
        setStep(step_ + 1, true);
    }
}

void OnboardingController::backTapped() {
    if (step_ >= 1) {
        setStep(step_ - 1, true);
    }
}

void OnboardingController::complete() {
    if (completing_) {
        return;
    }
    completing_ = true;
    platform_.desktop.defaults.setBool(true, onboardedKey);
    if (window_) {
        for (const PracticeKey key : {PracticeKey::control, PracticeKey::shift, PracticeKey::m}) {
            window_->setKeyActive(key, true);
        }
        window_->setNudge("here we go!");
    }
    platform_.desktop.runLoop.after(startDelaySeconds, lifetime_.guard([this] {
        if (onStart) {
            onStart();
        }
    }));
}

void OnboardingController::refresh() {
    const bool ax = platform_.desktop.accessibility.isProcessTrusted();
    const bool sr = platform_.desktop.windowServer.preflightScreenCaptureAccess();
    updateCards(ax, sr);
    updatePrimary(ax, sr);
    noticeGrants(ax, sr);
}

void OnboardingController::updatePrimary(bool ax, bool sr) {
    primaryIsReopen_ = step_ == 1 && ax && !sr && srAsked_;
    switch (static_cast<OnboardingStep>(step_)) {
    case OnboardingStep::welcome:
        window_->setPrimary("Get Started", true);
        break;
    case OnboardingStep::permissions:
        if (!ax) {
            window_->setPrimary("Grant Accessibility to continue", false);
        } else if (sr) {
            window_->setPrimary("Continue", true);
        } else if (srAsked_) {
            window_->setPrimary("Reopen Lumetry to apply", true);
        } else {
            window_->setPrimary("Grant Screen Recording to continue", false);
        }
        break;
    case OnboardingStep::takeoff:
        window_->setPrimary("Start Inspecting", true);
        break;
    }
}

void OnboardingController::bringForward() {
    if (isWindowVisible()) {
        platform_.application.activateIgnoringOtherApps();
        window_->makeKeyAndOrderFront();
    }
}

} // namespace lumetry
