#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace lumetry::x11 {

/// What XCB allocates with malloc.
struct Free {
    void operator()(void* memory) const { std::free(memory); } // NOLINT(*-no-malloc)
};

/// A reply of the X server; empty when the request failed or the connection is gone.
template<class T>
using Reply = std::unique_ptr<T, Free>;

/// The 32 bytes of an event read as the event that its type says it is.
template<class T>
[[nodiscard]] const T& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const T&>(event); // NOLINT(*-reinterpret-cast)
}

/// Which event it is, without the bit that marks those that another client has sent.
[[nodiscard]] inline int typeOf(const xcb_generic_event_t& event) {
    return event.response_type & 0x7F;
}

/// Whether another client has made the event up (a window manager's ConfigureNotify).
[[nodiscard]] inline bool isSynthetic(const xcb_generic_event_t& event) {
    return (event.response_type & 0x80) != 0;
}

} // namespace lumetry::x11
