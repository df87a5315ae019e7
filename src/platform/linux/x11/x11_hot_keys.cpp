#include "platform/linux/x11/x11_hot_keys.h"

#include <algorithm>
#include <utility>

namespace lumetry::x11 {
namespace {

/// The modifier bits that a key event carries, without buttons and groups.
constexpr std::uint16_t modifierBits = 0xFF;

std::uint16_t nativeModifiers(std::uint32_t modifiers) {
    std::uint16_t native = 0;
    if ((modifiers & hotKeyShift) != 0) {
        native |= XCB_MOD_MASK_SHIFT;
    }
    if ((modifiers & hotKeyControl) != 0) {
        native |= XCB_MOD_MASK_CONTROL;
    }
    return native;
}

/// Every combination of the bits, none of them included.
std::vector<std::uint16_t> subsetsOf(std::uint16_t bits) {
    std::vector<std::uint16_t> subsets;
    std::uint16_t subset = 0;
    do {
        subsets.push_back(subset);
        subset = static_cast<std::uint16_t>((subset - bits) & bits);
    } while (subset != 0);
    return subsets;
}

} // namespace

X11HotKeys::X11HotKeys(Connection& connection, Keyboard& keyboard)
    : connection_(connection), keyboard_(keyboard) {}

Token X11HotKeys::installEventHandler(Handler handler) {
    const int number = ++lastNumber_;
    handlers_.emplace_back(number, std::make_shared<Handler>(std::move(handler)));
    return Token([self = std::weak_ptr(self_), number] {
        if (const auto keys = self.lock()) {
            std::erase_if((*keys)->handlers_,
                          [number](const auto& entry) { return entry.first == number; });
        }
    });
}

Token X11HotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, HotKeyID id) {
    if (connection_.isLost()) {
        return {};
    }
    if (!events_) {
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
        keyboard_.watch();
        keyboardChange_ = keyboard_.onChange([this] { grabAnew(); });
    }
    HotKey hotKey{
        ++lastNumber_, static_cast<std::uint16_t>(keyCode), nativeModifiers(modifiers), id, {}};
    if (!grab(hotKey)) {
        return {};
    }
    const int number = hotKey.number;
    hotKeys_.push_back(std::move(hotKey));
    return Token([self = std::weak_ptr(self_), number] {
        const auto keys = self.lock();
        if (!keys) {
            return;
        }
        auto& all = (*keys)->hotKeys_;
        const auto found = std::ranges::find(all, number, &HotKey::number);
        (*keys)->ungrab(*found);
        all.erase(found);
    });
}

bool X11HotKeys::grab(HotKey& hotKey) {
    hotKey.keys = keyboard_.keysOf(hotKey.keyCode, keyboard_.group());
    std::vector<std::pair<xcb_keycode_t, xcb_void_cookie_t>> requests;
    for (const xcb_keycode_t key : hotKey.keys) {
        for (const std::uint16_t locks : subsetsOf(keyboard_.lockBits())) {
            requests.emplace_back(
                key, xcb_grab_key_checked(connection_.get(), 0, connection_.root(),
                                          static_cast<std::uint16_t>(hotKey.modifiers | locks), key,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    bool any = false;
    for (const auto& [key, request] : requests) {
        any = !connection_.failed(request) || any;
    }
    if (!any) {
        hotKey.keys.clear();
    }
    return any;
}

void X11HotKeys::ungrab(HotKey& hotKey) {
    for (const xcb_keycode_t key : hotKey.keys) {
        for (const std::uint16_t locks : subsetsOf(keyboard_.lockBits())) {
            xcb_ungrab_key(connection_.get(), key, connection_.root(),
                           static_cast<std::uint16_t>(hotKey.modifiers | locks));
        }
    }
    hotKey.keys.clear();
    connection_.flush();
}

void X11HotKeys::grabAnew() {
    for (HotKey& hotKey : hotKeys_) {
        // Whatever bits the locks had when it was grabbed, by any modifiers it is all of them.
        for (const xcb_keycode_t key : hotKey.keys) {
            xcb_ungrab_key(connection_.get(), key, connection_.root(), XCB_MOD_MASK_ANY);
        }
    }
    for (HotKey& hotKey : hotKeys_) {
        grab(hotKey);
    }
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_KEY_PRESS) {
        press(eventAs<xcb_key_press_event_t>(event));
    } else if (typeOf(event) == XCB_KEY_RELEASE) {
        heldKey_.reset();
    }
}

void X11HotKeys::press(const xcb_key_press_event_t& event) {
    // A key that is held down is pressed again and again.
    if (std::exchange(heldKey_, event.detail) == event.detail) {
        return;
    }
    const auto modifiers =
        static_cast<std::uint16_t>(event.state & modifierBits & ~keyboard_.lockBits());
    const auto found = std::ranges::find_if(hotKeys_, [&](const HotKey& hotKey) {
        return hotKey.modifiers == modifiers &&
               std::ranges::find(hotKey.keys, event.detail) != hotKey.keys.end();
    });
    if (found != hotKeys_.end()) {
        deliver(found->id);
    }
}

void X11HotKeys::deliver(HotKeyID id) {
    const HotKeyEvent pressed{id};
    const auto handlers = handlers_;
    for (auto entry = handlers.rbegin(); entry != handlers.rend(); ++entry) {
        if ((*entry->second)(&pressed) == noErr) {
            return;
        }
    }
}

} // namespace lumetry::x11
