#include "onboarding/onboarding_controller.h"

#include "platform/accessibility.h"
#include "platform/own_application.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"

namespace lumetry {
namespace {

constexpr std::string_view accessibilityPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
constexpr std::string_view screenRecordingPane =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
constexpr double paneDelaySeconds = 0.4;

CardState granted() {
    return {CardTint::green, false, "Granted ✓"};
}

} // namespace

void OnboardingController::updateCards(bool ax, bool sr) {
    window_->setCard(Permission::accessibility, ax ? granted() : CardState{});
    if (sr) {
        window_->setCard(Permission::screenRecording, granted());
    } else if (srAsked_) {
        window_->setCard(Permission::screenRecording, {CardTint::orange, false, "Reopen ↻"});
    } else {
        window_->setCard(Permission::screenRecording, CardState{});
    }
}

void OnboardingController::noticeGrants(bool ax, bool sr) {
    const bool freshAX = ax && !lastAX_;
    const bool freshSR = sr && !lastSR_;
    if (freshAX) {
        window_->pop(Permission::accessibility);
    }
    if (freshSR) {
        window_->pop(Permission::screenRecording);
    }
    lastAX_ = ax;
    lastSR_ = sr;
    if (freshAX || freshSR) {
        bringForward();
    }
}

void OnboardingController::grantAX() {
    if (window_) {
        window_->orderBack();
    }
    platform_.desktop.accessibility.isProcessTrustedWithOptions(true);
    platform_.application.openAddress(accessibilityPane);
}

void OnboardingController::grantSR() {
    srAsked_ = true;
    if (window_) {
        window_->orderBack();
    }
    platform_.desktop.windowServer.requestScreenCaptureAccess();
    platform_.desktop.windowServer.getShareableContent(lifetime_.guard([this] {
        platform_.desktop.runLoop.after(paneDelaySeconds, lifetime_.guard([this] {
            platform_.application.openAddress(screenRecordingPane);
        }));
    }));
}

} // namespace lumetry
