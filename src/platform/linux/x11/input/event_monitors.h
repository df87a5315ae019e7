#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "platform/input.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/input/keyboard.h"
#include "platform/linux/x11/windows/windows.h"

#include <functional>

namespace lumetry::x11 {

/// Global monitors on XInput's raw events, which come whoever the events are addressed to and
/// whoever has grabbed the devices.
class X11EventMonitors final : public EventMonitors {
public:
    X11EventMonitors(Connection& connection, X11Windows& windows, Keyboard& keyboard);

    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override;

private:
    void selectRawEvents();
    void handle(const xcb_generic_event_t& event);
    void handleKey(std::uint32_t key, bool pressed);
    void deliverMotion();
    [[nodiscard]] bool pointerIsOnOwnWindow();
    [[nodiscard]] bool ownWindowHasFocus();

    Connection& connection_;
    X11Windows& windows_;
    Keyboard& keyboard_;
    HandlerList<const Event&> handlers_;
    Lifetime lifetime_;
    bool moved_ = false;
    bool scrolled_ = false;
    Token events_;
    Token batches_;
};

} // namespace lumetry::x11
