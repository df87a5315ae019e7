#include "onboarding/onboarding_controller.h"

#include "platform/local_event_monitors.h"
#include "platform/run_loop.h"

namespace lumetry {
namespace {

constexpr double keyLitSeconds = 0.3;

/// What is still missing of the shortcut.
const char* nudgeText(bool control, bool shift) {
    if (control) {
        return shift ? "almost — tap M!" : "⌃ down — add ⇧ and M";
    }
    return shift ? "⇧ down — add ⌃ and M" : "waiting for your keys…";
}

} // namespace

void OnboardingController::syncTakeoffKeys(ModifierFlags modifierFlags) {
    if (completing_) {
        return;
    }
    const bool control = (modifierFlags & modifierControl) != 0;
    const bool shift = (modifierFlags & modifierShift) != 0;
    window_->setKeyActive(PracticeKey::control, control);
    window_->setKeyActive(PracticeKey::shift, shift);
    window_->setNudge(nudgeText(control, shift));
}

void OnboardingController::pressM() {
    window_->setKeyActive(PracticeKey::m, true);
    platform_.desktop.runLoop.after(keyLitSeconds, lifetime_.guard([this] {
        if (!completing_) {
            window_->setKeyActive(PracticeKey::m, false);
        }
    }));
}

void OnboardingController::installTakeoffMonitors() {
    removeTakeoffMonitors();
    takeoffMonitors_.push_back(platform_.localEventMonitors.addLocalMonitorForEvents(
        eventMask(EventType::flagsChanged), lifetime_.guard([this](const Event& event) {
            syncTakeoffKeys(event.modifierFlags);
            return EventFate::passOn;
        })));
    takeoffMonitors_.push_back(platform_.localEventMonitors.addLocalMonitorForEvents(
        eventMask(EventType::keyDown), lifetime_.guard([this](const Event& event) {
            if (event.keyCode != keyCodeM) {
                return EventFate::passOn;
            }
            pressM();
            return EventFate::swallow;
        })));
}

} // namespace lumetry
