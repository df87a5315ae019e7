#include "app/app_delegate.h"

#include "platform/accessibility.h"
#include "platform/run_loop.h"

#include <string>

namespace lumetry {
namespace {

constexpr double pollSeconds = 0.75;
constexpr int giveUpTick = 401;

/// Waits up to three seconds for the process to go, then opens what it is given as $0.
std::string reopenScript(pid_t pid) {
    return "for i in $(seq 1 30); do kill -0 " + std::to_string(pid) +
           " 2>/dev/null || break; sleep 0.1; done; /usr/bin/open \"$0\"";
}

} // namespace

bool AppDelegate::isBundled() {
    return platform_.application.bundlePath().ends_with(".app");
}

void AppDelegate::watchForAccessibilityGrant() {
    trustTicks_ = 0;
    trustTimer_ =
        platform_.desktop.runLoop.every(pollSeconds, lifetime_.guard([this] { checkTrust(); }));
}

void AppDelegate::checkTrust() {
    ++trustTicks_;
    if (platform_.desktop.accessibility.isProcessTrusted()) {
        trustTimer_.reset();
        // The onboarding shows the grant itself, and goes on from there.
        if (!onboarding_.isWindowVisible()) {
            relaunchAfterGrant();
        }
    } else if (trustTicks_ >= giveUpTick) {
        trustTimer_.reset();
    }
}

void AppDelegate::relaunchAfterGrant() {
    if (!isBundled()) {
        return;
    }
    platform_.application.startProcess(
        "/bin/sh", {"-c", reopenScript(state_.lumetryPID), platform_.application.bundlePath()});
    platform_.application.terminate();
}

} // namespace lumetry
