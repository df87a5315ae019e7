#pragma once

#include "base/token.h"
#include "platform/linux/lock/lock_watch.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/windows.h"

#include <vector>

namespace lumetry::x11 {

/// Watches for the window of a screen locker, and for the server's own screen saver. The server
/// tells when something changes, and only then are windows looked at.
class X11LockWatch final : public LockWatch {
public:
    X11LockWatch(Connection& connection, X11Windows& windows);

    [[nodiscard]] bool locked() const override { return saverIsOn_ || locker_ != XCB_WINDOW_NONE; }

private:
    void watchSaver();
    void handle(const xcb_generic_event_t& event);
    /// Whether the locker may have ceased to be one by it.
    [[nodiscard]] bool concernsLocker(const xcb_generic_event_t& event) const;
    void rise(xcb_window_t window, bool overrideRedirect);
    void eventsHandled();
    void look();

    Connection& connection_;
    X11Windows& windows_;
    bool saverIsOn_ = false;
    xcb_window_t locker_ = XCB_WINDOW_NONE;
    /// It came up while it was watched for. One that was there before may be but a picture behind
    /// all windows, of which there was none to be seen.
    bool cameUp_ = false;
    bool lookDue_ = false;
    std::vector<xcb_window_t> risen_; ///< shown, moved or raised since the last look
    bool wasLocked_ = false;          ///< as was last told
    Token rootEvents_;
    Token events_;
    Token batches_;
};

} // namespace lumetry::x11
