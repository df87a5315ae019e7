#include "session/overlay.h"

#include "platform/accessibility.h"
#include "platform/input.h"
#include "platform/run_loop.h"
#include "platform/screen_lock.h"
#include "platform/window_server.h"
#include "probe/electron.h"

namespace lumetry {

Overlay::Overlay(const Platform& platform, ProbeState& state)
    : platform_(platform), state_(state), view_(platform.windowServer),
      window_(platform.overlayWindows.makeWindow(unionFrame(platform.windowServer),
                                                 OverlayWindowStyle{})),
      inspector_(platform, state), detectLog_(platform.defaults, platform.fileSystem) {
    window_->setContentView(view_);
}

Rect Overlay::unionFrame(WindowServer& windowServer) {
    Rect all = Rect::null();
    for (const Screen& screen : windowServer.screens()) {
        all = unite(all, screen.frame);
    }
    return all;
}

void Overlay::start() {
    if (!platform_.accessibility.isProcessTrusted()) {
        if (onNeedsPermissions) {
            onNeedsPermissions();
        }
        return;
    }
    active_ = true;
    lockWatch_ = platform_.screenLock.onChange(lifetime_.guard([this] {
        openUp();
        followLock();
    }));
    openUp();
    window_->setFrame(unionFrame(platform_.windowServer));
    followLock();
}

void Overlay::openUp() {
    if (platform_.screenLock.isLocked()) {
        return;
    }
    wakeVisibleChromiumApps(platform_, state_);
    if (!platform_.windowServer.preflightScreenCaptureAccess()) {
        platform_.windowServer.requestScreenCaptureAccess();
    }
}

void Overlay::followLock() {
    if (platform_.screenLock.isLocked()) {
        hide();
    } else {
        show();
    }
}

void Overlay::show() {
    window_->orderFrontRegardless();
    keyMonitor_ = platform_.eventMonitors.addGlobalMonitorForEvents(
        eventMask(EventType::keyDown), [end = lifetime_.guard([this] { stop(); }),
                                        &runLoop = platform_.runLoop](const Event& event) {
            if (event.keyCode == keyCodeEscape) {
                // Later, since stop() removes this very monitor.
                runLoop.async(end);
            }
        });
    view_.exitTag = true;
    beginTracking();
}

void Overlay::beginTracking() {
    if (!active_ || monitor_) {
        return;
    }
    monitor_ = platform_.eventMonitors.addGlobalMonitorForEvents(
        eventMask(EventType::mouseMoved) | eventMask(EventType::flagsChanged) |
            eventMask(EventType::scrollWheel),
        lifetime_.guard([this](const Event&) { update(); }));
    update();
}

void Overlay::stop() {
    active_ = false;
    pinnedFrame_.reset();
    inspector_.forget();
    view_.exitTag = false;
    releaseElectronEnhancements(platform_, state_);
    lockWatch_.reset();
    hide();
}

void Overlay::hide() {
    monitor_.reset();
    keyMonitor_.reset();
    window_->orderOut();
}

} // namespace lumetry
