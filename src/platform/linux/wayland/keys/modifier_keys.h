#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/input.h"
#include "platform/linux/wayland/connection/connection.h"

#include <cstdint>
#include <functional>

namespace lumetry::wayland {

/// Which modifier keys are down, whoever has the focus, where the compositor tells (KWin from
/// version 6 on, to programs whose desktop entry asks for it).
class ModifierKeys {
public:
    explicit ModifierKeys(Connection& connection) : connection_(connection) {}
    ModifierKeys(const ModifierKeys&) = delete;
    ModifierKeys& operator=(const ModifierKeys&) = delete;
    ~ModifierKeys();

    /// Whether the compositor tells.
    [[nodiscard]] bool areTold() const;
    /// Those that are down now. None while nobody watches.
    [[nodiscard]] ModifierFlags down() const;
    /// Calls the handler whenever one has gone down or up. The compositor is listened to only
    /// meanwhile.
    [[nodiscard]] Token watch(std::function<void()> handler);

private:
    struct Events;

    Connection& connection_;
    Owned<org_kde_kwin_keystate> states_;
    std::uint32_t pressed_ = 0; ///< a bit for each key of the protocol
    HandlerList<> handlers_;
    Lifetime lifetime_;
};

} // namespace lumetry::wayland
