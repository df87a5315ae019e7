#pragma once

#include <atspi/atspi.h>

#include <cstdint>

namespace lumetry::atspi {

/// @param states the bits of an object's states
[[nodiscard]] constexpr bool hasState(std::uint64_t states, AtspiStateType state) {
    return ((states >> static_cast<unsigned>(state)) & 1U) != 0;
}

} // namespace lumetry::atspi
