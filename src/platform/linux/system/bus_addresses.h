#pragma once

#include <string>

namespace lumetry {

/// Where the session bus is; empty when nothing says so. Without an address libdbus would start a
/// bus of its own, which no application is on.
[[nodiscard]] std::string sessionBusAddress();
/// Where the system bus is, if there is one.
[[nodiscard]] std::string systemBusAddress();

} // namespace lumetry
