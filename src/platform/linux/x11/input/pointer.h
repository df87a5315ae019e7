#pragma once

#include "platform/input.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/input/keyboard.h"
#include "platform/linux/x11/windows/windows.h"

#include <cstdint>
#include <optional>

namespace lumetry::x11 {

class X11Pointer final : public Pointer {
public:
    X11Pointer(Connection& connection, X11Windows& windows, Keyboard& keyboard);

    /// The origin when the server is gone.
    [[nodiscard]] Point location() override;
    [[nodiscard]] ModifierFlags modifierFlags() override;

private:
    struct Answer {
        std::uint16_t state = 0;
        double at = 0; ///< RunLoop::now
    };

    [[nodiscard]] Reply<xcb_query_pointer_reply_t> query();

    Connection& connection_;
    X11Windows& windows_;
    Keyboard& keyboard_;
    /// The modifiers that came with the location, for whoever asks for both in turn.
    std::optional<Answer> withLocation_;
};

} // namespace lumetry::x11
