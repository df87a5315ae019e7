#pragma once

#include "platform/input.h"

#include <cstdint>
#include <optional>

namespace lumetry::x11 {

using Keysym = std::uint32_t;

/// The platform's code of the key that carries the symbol; absent when it has none.
[[nodiscard]] std::optional<std::uint16_t> keyCodeOf(Keysym symbol);

/// Which modifier a key is; 0 when it is none.
[[nodiscard]] ModifierFlags modifierOf(Keysym symbol);

/// Whether pressing or releasing the key changes a modifier's state (Caps Lock included).
[[nodiscard]] bool isModifierKey(Keysym symbol);

/// Whether the key locks something (Caps Lock aside, which has a bit of its own).
[[nodiscard]] bool isLockKey(Keysym symbol);

} // namespace lumetry::x11
