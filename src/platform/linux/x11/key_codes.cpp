#include "platform/linux/x11/key_codes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumetry::x11 {
namespace {

/// X11's symbols (X11/keysymdef.h); those of Latin letters and digits are their characters.
namespace symbol {
constexpr Keysym backSpace = 0xFF08;
constexpr Keysym tab = 0xFF09;
constexpr Keysym enter = 0xFF0D;
constexpr Keysym escape = 0xFF1B;
constexpr Keysym home = 0xFF50;
constexpr Keysym left = 0xFF51;
constexpr Keysym up = 0xFF52;
constexpr Keysym right = 0xFF53;
constexpr Keysym down = 0xFF54;
constexpr Keysym pageUp = 0xFF55;
constexpr Keysym pageDown = 0xFF56;
constexpr Keysym end = 0xFF57;
constexpr Keysym scrollLock = 0xFF14;
constexpr Keysym numLock = 0xFF7F;
constexpr Keysym keypadEnter = 0xFF8D;
constexpr Keysym shiftLeft = 0xFFE1;
constexpr Keysym shiftRight = 0xFFE2;
constexpr Keysym controlLeft = 0xFFE3;
constexpr Keysym controlRight = 0xFFE4;
constexpr Keysym capsLock = 0xFFE5;
constexpr Keysym metaLeft = 0xFFE7;
constexpr Keysym metaRight = 0xFFE8;
constexpr Keysym altLeft = 0xFFE9;
constexpr Keysym altRight = 0xFFEA;
constexpr Keysym superLeft = 0xFFEB;
constexpr Keysym superRight = 0xFFEC;
constexpr Keysym deleteForward = 0xFFFF;
} // namespace symbol

using KeyCode = std::pair<Keysym, std::uint16_t>;

/// The codes of the platform's virtual keys (HIToolbox/Events.h).
constexpr std::array keyCodes = {
    KeyCode{'a', 0},
    KeyCode{'s', 1},
    KeyCode{'d', 2},
    KeyCode{'f', 3},
    KeyCode{'h', 4},
    KeyCode{'g', 5},
    KeyCode{'z', 6},
    KeyCode{'x', 7},
    KeyCode{'c', 8},
    KeyCode{'v', 9},
    KeyCode{'b', 11},
    KeyCode{'q', 12},
    KeyCode{'w', 13},
    KeyCode{'e', 14},
    KeyCode{'r', 15},
    KeyCode{'y', 16},
    KeyCode{'t', 17},
    KeyCode{'1', 18},
    KeyCode{'2', 19},
    KeyCode{'3', 20},
    KeyCode{'4', 21},
    KeyCode{'6', 22},
    KeyCode{'5', 23},
    KeyCode{'9', 25},
    KeyCode{'7', 26},
    KeyCode{'8', 28},
    KeyCode{'0', 29},
    KeyCode{'o', 31},
    KeyCode{'u', 32},
    KeyCode{'i', 34},
    KeyCode{'p', 35},
    KeyCode{symbol::enter, 36},
    KeyCode{'l', 37},
    KeyCode{'j', 38},
    KeyCode{'k', 40},
    KeyCode{'n', 45},
    KeyCode{'m', keyCodeM},
    KeyCode{symbol::tab, 48},
    KeyCode{' ', 49},
    KeyCode{symbol::backSpace, 51},
    KeyCode{symbol::escape, keyCodeEscape},
    KeyCode{symbol::superRight, 54},
    KeyCode{symbol::superLeft, 55},
    KeyCode{symbol::shiftLeft, 56},
    KeyCode{symbol::capsLock, 57},
    KeyCode{symbol::altLeft, 58},
    KeyCode{symbol::controlLeft, 59},
    KeyCode{symbol::shiftRight, 60},
    KeyCode{symbol::altRight, 61},
    KeyCode{symbol::controlRight, 62},
    KeyCode{symbol::keypadEnter, 76},
    KeyCode{symbol::home, 115},
    KeyCode{symbol::pageUp, 116},
    KeyCode{symbol::deleteForward, 117},
    KeyCode{symbol::end, 119},
    KeyCode{symbol::pageDown, 121},
    KeyCode{symbol::left, 123},
    KeyCode{symbol::right, 124},
    KeyCode{symbol::down, 125},
    KeyCode{symbol::up, 126},
};

} // namespace

std::optional<std::uint16_t> keyCodeOf(Keysym symbol) {
    const bool upperCase = symbol >= 'A' && symbol <= 'Z';
    const Keysym wanted = upperCase ? symbol + ('a' - 'A') : symbol;
    const auto* const found = std::ranges::find(keyCodes, wanted, &KeyCode::first);
    return found == keyCodes.end() ? std::nullopt : std::optional(found->second);
}

ModifierFlags modifierOf(Keysym symbol) {
    switch (symbol) {
    case symbol::shiftLeft:
    case symbol::shiftRight:
        return modifierShift;
    case symbol::controlLeft:
    case symbol::controlRight:
        return modifierControl;
    case symbol::altLeft:
    case symbol::altRight:
        return modifierOption;
    case symbol::superLeft:
    case symbol::superRight:
        return modifierCommand;
    default:
        return 0;
    }
}

bool isModifierKey(Keysym symbol) {
    // Where Alt stands on a shifted level, the unshifted one is often Meta.
    return modifierOf(symbol) != 0 || symbol == symbol::capsLock || symbol == symbol::metaLeft ||
           symbol == symbol::metaRight;
}

bool isLockKey(Keysym symbol) {
    return symbol == symbol::numLock || symbol == symbol::scrollLock;
}

} // namespace lumetry::x11
