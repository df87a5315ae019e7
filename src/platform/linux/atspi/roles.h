#pragma once

#include <cstdint>
#include <string_view>

namespace lumetry::atspi {

/// The AXRole that stands for a role of AT-SPI; "AXUnknown" for a number that is none.
[[nodiscard]] std::string_view axRole(std::int64_t role);

} // namespace lumetry::atspi
