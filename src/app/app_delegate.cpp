#include "app/app_delegate.h"

#include "app/status_menu.h"
#include "platform/accessibility.h"
#include "platform/defaults.h"
#include "platform/input.h"
#include "platform/run_loop.h"
#include "platform/window_server.h"
#include "probe/electron.h"

#include <utility>

namespace lumetry {
namespace {

constexpr std::uint32_t hotKeyID = 1;
constexpr double launchDelaySeconds = 0.15;
constexpr int practiceStep = static_cast<int>(OnboardingStep::takeoff);

} // namespace

AppDelegate::AppDelegate(const ShellPlatform& platform, ProbeState& state, ShellWindows windows)
    : platform_(platform), state_(state), makeControlPanel_(std::move(windows.makeControlPanel)),
      overlay_(platform.desktop, state), onboarding_(platform, std::move(windows.makeOnboarding)) {}

void AppDelegate::applicationDidFinishLaunching() {
    platform_.desktop.accessibility.createSystemWide().setMessagingTimeout(messagingTimeoutSeconds);
    installStatusItem();
    hotKey_.emplace(platform_.hotKeys, keyCodeM, hotKeyControl | hotKeyShift, hotKeyID,
                    lifetime_.guard([this] { toggle(); }));
    wireCallbacks();
    if (!platform_.desktop.accessibility.isProcessTrusted()) {
        watchForAccessibilityGrant();
    }
    if (!platform_.application.isResumed()) {
        platform_.desktop.runLoop.after(launchDelaySeconds,
                                        lifetime_.guard([this] { startOrOnboard(); }));
    }
}

void AppDelegate::installStatusItem() {
    statusItem_ = platform_.statusBar.makeStatusItem();
    statusItem_->setImage(statusBarIcon());
    statusItem_->setToolTip("Lumetry — ⌃⇧M to toggle");
    statusItem_->setMenu(
        statusMenu(lifetime_.guard([this] { toggle(); }),
                   [&application = platform_.application] { application.terminate(); }));
}

void AppDelegate::wireCallbacks() {
    onboarding_.onStart = lifetime_.guard([this] {
        if (auto* const window = onboarding_.window()) {
            window->close();
        }
        if (isBundled()) {
            relaunchAfterGrant();
        } else {
            overlay_.start();
        }
    });
    onboarding_.onReopen = lifetime_.guard([this] { relaunchAfterGrant(); });
    overlay_.onNeedsPermissions = lifetime_.guard([this] { onboarding_.show(); });
}

bool AppDelegate::permissionsReady() {
    return platform_.desktop.accessibility.isProcessTrusted() &&
           platform_.desktop.windowServer.preflightScreenCaptureAccess();
}

bool AppDelegate::isOnboarded() {
    return platform_.desktop.defaults.boolForKey(onboardedKey);
}

void AppDelegate::startOrOnboard() {
    if (overlay_.active()) {
        return;
    }
    if (!permissionsReady()) {
        onboarding_.show();
    } else if (isOnboarded()) {
        overlay_.start();
    } else {
        onboarding_.showTakeoff();
    }
}

void AppDelegate::toggle() {
    if (onboarding_.isWindowVisible()) {
        if (onboarding_.step() == practiceStep) {
            onboarding_.complete();
        }
        return;
    }
    if (!platform_.desktop.accessibility.isProcessTrusted()) {
        watchForAccessibilityGrant();
    }
    if (overlay_.active()) {
        overlay_.stop();
    } else {
        overlay_.start();
    }
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    if (onboarding_.isWindowVisible()) {
        onboarding_.window()->makeKeyAndOrderFront();
        platform_.application.activateIgnoringOtherApps();
    } else if (permissionsReady() && isOnboarded()) {
        showControlPanel();
    } else {
        startOrOnboard();
    }
    return true;
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
    return !platform_.statusBar.isPresent() && !overlay_.active();
}

void AppDelegate::applicationWillTerminate() {
    releaseElectronEnhancements(platform_.desktop, state_);
}

void AppDelegate::showControlPanel() {
    if (!controlWindow_) {
        controlWindow_ = makeControlPanel_({lifetime_.guard([this] { startFromPanel(); }),
                                            lifetime_.guard([this] { quitFromPanel(); })},
                                           statusBarIcon());
    }
    controlWindow_->center();
    platform_.application.activateIgnoringOtherApps();
    controlWindow_->makeKeyAndOrderFront();
}

void AppDelegate::startFromPanel() {
    if (controlWindow_) {
        controlWindow_->orderOut();
    }
    startOrOnboard();
}

void AppDelegate::quitFromPanel() {
    platform_.application.terminate();
}

} // namespace lumetry
