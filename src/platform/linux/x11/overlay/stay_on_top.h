#pragma once

#include "base/lifetime.h"
#include "platform/linux/x11/connection/connection.h"

#include <unordered_set>

namespace lumetry::x11 {

/// Raises a window again whenever another one comes to lie above it, for as long as this object
/// lives. Where another window insists on the same, it lets more and more time pass.
class StayOnTop {
public:
    StayOnTop(Connection& connection, xcb_window_t window);
    StayOnTop(const StayOnTop&) = delete;
    StayOnTop& operator=(const StayOnTop&) = delete;
    ~StayOnTop() = default;

private:
    void handle(const xcb_generic_event_t& event);
    void configured(const xcb_configure_notify_event_t& event);
    /// @param mapped only then it covers anything
    void isAbove(xcb_window_t other, bool mapped);
    /// Raises only now, for whoever watches for lockers hides the window when one has come.
    void eventsHandled();
    void raiseSoon();
    void raise();

    Connection& connection_;
    xcb_window_t window_;
    std::unordered_set<xcb_window_t> above_; ///< and perhaps hidden
    bool covered_ = false;                   ///< by one that is not hidden, as of these events
    double lastRaise_ = 0;                   ///< RunLoop::now
    double pause_ = 0;                       ///< seconds from one raise to the next
    bool scheduled_ = false;
    Lifetime lifetime_;
    Token rootEvents_;
    Token events_;
    Token batches_;
};

} // namespace lumetry::x11
