#pragma once

#include "platform/linux/x11/connection.h"
#include "platform/linux/x11/handler_list.h"

#include <functional>

namespace lumetry::x11 {

/// Whether a compositing manager puts the screen together, so that windows can be translucent.
class CompositingManager {
public:
    explicit CompositingManager(Connection& connection);
    CompositingManager(const CompositingManager&) = delete;
    CompositingManager& operator=(const CompositingManager&) = delete;
    ~CompositingManager() = default;

    [[nodiscard]] bool isRunning() const { return running_; }
    /// Calls the handler whenever one has come or gone.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }

private:
    void handle(const xcb_generic_event_t& event);

    Connection& connection_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    bool running_ = false;
    HandlerList<> handlers_;
    Token events_;
};

} // namespace lumetry::x11
