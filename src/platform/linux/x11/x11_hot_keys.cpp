#include "platform/linux/x11/x11_hot_keys.h"

#include <algorithm>
#include <ranges>

// The header names a field after a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

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
        watchGroup();
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

void X11HotKeys::watchGroup() {
    auto* const c = connection_.get();
    const auto* const extension = xcb_get_extension_data(c, &xcb_xkb_id);
    if (extension == nullptr || extension->present == 0) {
        return;
    }
    const auto used =
        connection_.reply(xcb_xkb_use_extension_reply,
                          xcb_xkb_use_extension(c, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION));
    if (!used || used->supported == 0) {
        return;
    }
    keyboardEvent_ = extension->first_event;
    xcb_xkb_select_events_details_t details{};
    details.affectState = details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
    xcb_xkb_select_events_aux(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0,
                              0, &details);
    const auto state =
        connection_.reply(xcb_xkb_get_state_reply, xcb_xkb_get_state(c, XCB_XKB_ID_USE_CORE_KBD));
    group_ = state ? state->group : 0;
}

bool X11HotKeys::grab(HotKey& hotKey) {
    hotKey.keys = keyboard_.keysOf(hotKey.keyCode, group_);
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
    const auto type = typeOf(event);
    if (type == XCB_KEY_PRESS) {
        press(eventAs<xcb_key_press_event_t>(event));
    } else if (type == XCB_KEY_RELEASE) {
        const auto& release = eventAs<xcb_key_release_event_t>(event);
        lastRelease_ = {release.detail, release.time};
    } else if (type == XCB_MAPPING_NOTIFY) {
        grabAnew();
    } else if (keyboardEvent_ != 0 && type == keyboardEvent_) {
        const auto& state = eventAs<xcb_xkb_state_notify_event_t>(event);
        if (state.xkbType == XCB_XKB_STATE_NOTIFY && state.group != group_) {
            group_ = state.group;
            grabAnew();
        }
    }
}

void X11HotKeys::press(const xcb_key_press_event_t& event) {
    // A key that is held down repeats as a release and a press of the same time.
    if (lastRelease_ && lastRelease_->key == event.detail && lastRelease_->time == event.time) {
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
    for (const auto& [number, handler] : handlers | std::views::reverse) {
        if ((*handler)(&pressed) == noErr) {
            return;
        }
    }
}

} // namespace lumetry::x11
