#pragma once

#include <cstddef>

namespace lumetry {

/// How often this program has asked for memory so far.
[[nodiscard]] std::size_t allocationsSoFar();

} // namespace lumetry
