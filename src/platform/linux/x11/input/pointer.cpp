#include "platform/linux/x11/input/pointer.h"

#include <utility>

namespace lumetry::x11 {
namespace {

/// How long after the location the modifiers still belong to the same moment.
constexpr double sameMomentSeconds = 0.002;

} // namespace

X11Pointer::X11Pointer(Connection& connection, X11Windows& windows, Keyboard& keyboard)
    : connection_(connection), windows_(windows), keyboard_(keyboard) {}

Reply<xcb_query_pointer_reply_t> X11Pointer::query() {
    return connection_.reply(xcb_query_pointer_reply,
                             xcb_query_pointer(connection_.get(), connection_.root()));
}

Point X11Pointer::location() {
    withLocation_.reset();
    const auto pointer = query();
    if (!pointer) {
        return {};
    }
    withLocation_ = Answer{pointer->mask, connection_.runLoop().now()};
    return windows_.layout().toScreenSpace(
        Point{static_cast<double>(pointer->root_x), static_cast<double>(pointer->root_y)});
}

ModifierFlags X11Pointer::modifierFlags() {
    const auto known = std::exchange(withLocation_, std::nullopt);
    if (known && connection_.runLoop().now() - known->at < sameMomentSeconds) {
        return keyboard_.flags(known->state);
    }
    const auto pointer = query();
    return pointer ? keyboard_.flags(pointer->mask) : 0;
}

} // namespace lumetry::x11
