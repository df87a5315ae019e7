#pragma once

#include "platform/linux/x11/connection/connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::x11 {

/// A request for a window's property that is on its way.
struct PropertyRequest {
    xcb_get_property_cookie_t cookie{};
};

/// @param words at most that many units of four bytes
[[nodiscard]] PropertyRequest requestProperty(Connection& connection, xcb_window_t window,
                                              xcb_atom_t property, std::uint32_t words);
[[nodiscard]] PropertyRequest requestProperty(Connection& connection, xcb_window_t window,
                                              Atom property, std::uint32_t words);

/// Numbers of 32 bits (CARDINAL, ATOM, WINDOW); empty when the property is absent or not of them.
[[nodiscard]] std::vector<std::uint32_t> numbers(Connection& connection, PropertyRequest request);
[[nodiscard]] std::optional<std::uint32_t> firstNumber(Connection& connection,
                                                       PropertyRequest request);
/// Texts of bytes; those of a list are separated by a zero byte. Empty when absent.
[[nodiscard]] std::string text(Connection& connection, PropertyRequest request);

} // namespace lumetry::x11
