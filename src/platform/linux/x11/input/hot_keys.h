#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/hot_keys.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/input/keyboard.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// Tells when other clients may have let go of keys they had grabbed: they have said so, or they
/// have ended. The server has no event for that; what it records for debuggers does tell. It
/// records for a connection of its own, and nothing else than this is sent over it. On a server
/// that does not record, nothing is told.
class FreedGrabs {
public:
    /// @param handler also called when the recording has begun, for what happened before. It may
    /// destroy this object
    FreedGrabs(Connection& connection, std::function<void()> handler);
    FreedGrabs(const FreedGrabs&) = delete;
    FreedGrabs& operator=(const FreedGrabs&) = delete;
    ~FreedGrabs();

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    void record();
    void read();

    Connection& connection_;
    std::function<void()> handler_;
    std::unique_ptr<xcb_connection_t, Disconnect> recording_;
    std::uint32_t context_ = 0; ///< the server's name of what is recorded
    unsigned request_ = 0;      ///< that all replies answer
    Token readable_;
};

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
