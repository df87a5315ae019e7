#include "platform/linux/x11/handler_list.h"
#include "platform/linux/x11/key_codes.h"

#include <X11/keysym.h>
#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::x11 {
namespace {

TEST(HandlerList, LetsHandlersComeAndGoDuringACall) {
    auto list = std::make_unique<HandlerList<int>>();
    std::string calls;
    Token third;
    Token added;
    Token first = list->add([&](int) {
        calls += 'a';
        third.reset();
        if (!added) {
            added = list->add([&](int) { calls += 'n'; });
        }
    });
    Token second = list->add([&](int) {
        calls += 'b';
        second.reset();
    });
    third = list->add([&](int) { calls += 'c'; });
    const Token last = list->add([&](int number) { calls += std::to_string(number); });
    list->call(1);
    EXPECT_EQ(calls, "ab1");
    list->call(2);
    EXPECT_EQ(calls, "ab1a2n");
    list.reset();
    first.reset(); // a token may outlive the list
}

TEST(HandlerList, MayBeCalledWithinACall) {
    HandlerList<int> list;
    std::string calls;
    Token own;
    own = list.add([&](int depth) {
        calls += 'a';
        if (depth > 0) {
            list.call(depth - 1);
        } else {
            own.reset();
        }
    });
    const Token other = list.add([&](int depth) { calls += std::to_string(depth); });
    list.call(1);
    EXPECT_EQ(calls, "aa01");
}

TEST(KeyCodes, AreThoseOfThePlatform) {
    struct KeyCase {
        Keysym symbol;
        std::optional<std::uint16_t> code;
    };
    const std::vector<KeyCase> cases = {
        {XK_Escape, 53},
        {XK_m, 46},
        {XK_M, 46},
        {XK_a, 0},
        {XK_Return, 36},
        {XK_KP_Enter, 76},
        {XK_space, 49},
        {XK_Tab, 48},
        {XK_5, 23},
        {XK_Left, 123},
        {XK_Delete, 117},
        {XK_Cyrillic_em, std::nullopt},
        {XK_F35, std::nullopt},
        {0, std::nullopt},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(keyCodeOf(one.symbol), one.code) << one.symbol;
    }
}

TEST(KeyCodes, KnowTheModifiers) {
    struct ModifierCase {
        Keysym symbol;
        ModifierFlags flag;
        bool modifierKey;
    };
    const std::vector<ModifierCase> cases = {
        {XK_Alt_L, modifierOption, true},    {XK_Alt_R, modifierOption, true},
        {XK_Shift_R, modifierShift, true},   {XK_Control_L, modifierControl, true},
        {XK_Super_R, modifierCommand, true}, {XK_Caps_Lock, 0, true},
        {XK_ISO_Level3_Shift, 0, false},     {XK_Escape, 0, false},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(modifierOf(one.symbol), one.flag) << one.symbol;
        EXPECT_EQ(isModifierKey(one.symbol), one.modifierKey) << one.symbol;
    }
}

} // namespace
} // namespace lumetry::x11
