#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "platform/hot_keys.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/input/freed_grabs.h"
#include "platform/linux/x11/input/keyboard.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// Hot keys as passive grabs of the root window. They are taken anew whenever the keyboard's layout
/// or its active group changes, and in every state of the locks. What another client has grabbed is
/// taken when that client lets go of it or ends.
class X11HotKeys final : public HotKeys {
public:
    X11HotKeys(Connection& connection, Keyboard& keyboard);

    [[nodiscard]] Token installEventHandler(Handler handler) override {
        return handlers_.add(std::move(handler));
    }
    [[nodiscard]] Token registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                            HotKeyID id) override;
    /// Calls the handler when a hot key turns out to be another client's, once.
    void onTaken(std::function<void()> handler) { onTaken_ = std::move(handler); }

private:
    struct Combination {
        xcb_keycode_t key = 0;
        std::uint16_t modifiers = 0; ///< X11's bits, some locks among them

        bool operator==(const Combination&) const = default;
    };
    struct HotKey {
        int number = 0;
        std::uint16_t keyCode = 0;
        std::uint16_t modifiers = 0; ///< X11's bits
        HotKeyID id;
        std::vector<Combination> grabbed;
        bool isWhole = false; ///< nothing of it is another client's
    };

    struct HeldKey {
        xcb_keycode_t key = 0;
        xcb_timestamp_t lastPressed = 0; ///< milliseconds of the server
    };

    void unregister(int number);
    void handle(const xcb_generic_event_t& event);
    void press(const xcb_key_press_event_t& event);
    /// Grabs what is to be grabbed and is not, then lets go what is grabbed and need not be.
    void grab(HotKey& hotKey);
    [[nodiscard]] std::vector<Combination> combinationsOf(const HotKey& hotKey);
    void ungrab(const Combination& combination);
    void grabAnew();
    void awaitOthers();

    Connection& connection_;
    Keyboard& keyboard_;
    std::optional<HeldKey> heldKey_; ///< of the hot key that was pressed last
    int lastNumber_ = 0;
    AnsweringHandlerList<EventStatus, const HotKeyEvent*> handlers_;
    std::vector<HotKey> hotKeys_;
    Token events_;
    Token keyboardChange_;
    std::optional<FreedGrabs> freedGrabs_; ///< while something is missing
    std::function<void()> onTaken_;
    Lifetime lifetime_;
};

} // namespace lumetry::x11
