#pragma once

#include "platform/input.h"
#include "platform/linux/x11/connection.h"
#include "platform/linux/x11/handler_list.h"
#include "platform/linux/x11/key_codes.h"

#include <array>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// Knows which symbols the keys carry and which modifier bits stand for what. It reads that with
/// the first question, and again after it has changed.
class Keyboard {
public:
    explicit Keyboard(Connection& connection);
    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;
    ~Keyboard() = default;

    /// From now on follows what changes beyond the core protocol's reach: the active group, and
    /// that a key which is held down is pressed once.
    void watch();
    /// Calls the handler whenever the symbols, the modifiers or, once it is watched, the active
    /// group have changed.
    [[nodiscard]] Token onChange(std::function<void()> handler) {
        return handlers_.add(std::move(handler));
    }
    /// The active group of the layout, from 0.
    [[nodiscard]] std::uint8_t group() const { return group_; }

    /// @param state modifier bits as the pointer and key events carry them
    [[nodiscard]] ModifierFlags flags(std::uint16_t state);
    [[nodiscard]] bool isModifier(std::uint32_t key);
    /// keyCodeUnknown for a key that the platform has no code for.
    [[nodiscard]] std::uint16_t keyCode(std::uint32_t key);
    /// The keys that the platform gives that code, by the symbols they carry: in the group, where
    /// it has such a key, else in any, else the one in its place on a US keyboard.
    /// @param group of the layout, from 0
    [[nodiscard]] std::vector<std::uint8_t> keysOf(std::uint16_t keyCode, std::uint8_t group);
    /// The modifier bits that are locks: Caps Lock, Num Lock and Scroll Lock.
    [[nodiscard]] std::uint16_t lockBits();

private:
    static constexpr std::size_t modifierCount = 8;

    void handle(const xcb_generic_event_t& event);
    void changed(bool symbols);
    void refresh();
    void readSymbols();
    void readModifiers();
    [[nodiscard]] std::vector<Keysym> symbolsOf(std::uint32_t key) const;

    Connection& connection_;
    Token events_;
    HandlerList<> handlers_;
    std::uint8_t extensionEvent_ = 0; ///< the one event of XKEYBOARD; 0 while it is not watched
    std::uint8_t group_ = 0;
    bool dirty_ = true;
    std::uint32_t firstKey_ = 0;
    std::size_t symbolsPerKey_ = 0;
    std::vector<Keysym> symbols_;
    std::array<ModifierFlags, modifierCount> modifiers_{};
    std::uint16_t lockBits_ = 0;
};

} // namespace lumetry::x11
