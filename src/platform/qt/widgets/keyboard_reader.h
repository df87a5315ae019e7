#pragma once

#include "platform/input.h"

#include <cstdint>
#include <functional>

class QKeyEvent;

namespace lumetry {

/// What is known of the keyboard that the program's own windows hear.
struct KeyboardReader {
    /// The platform's code of the event's key, keyCodeUnknown where it has none.
    std::function<std::uint16_t(const QKeyEvent& key)> keyCode;
    std::function<bool(const QKeyEvent& key)> isModifier;
    /// After the event, or at this moment where there is none.
    std::function<ModifierFlags(const QKeyEvent* key)> modifierFlags;
};

/// As Qt tells it, for window systems where nothing else does.
[[nodiscard]] KeyboardReader qtKeyboardReader();

} // namespace lumetry
