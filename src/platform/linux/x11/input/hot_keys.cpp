#include "platform/linux/x11/input/hot_keys.h"

#include <xcb/record.h>
#include <xcb/xcbext.h>

#include <algorithm>

namespace lumetry::x11 {
namespace {

/// The modifier bits that a key event carries, without buttons and groups.
constexpr std::uint16_t modifierBits = 0xFF;

/// Milliseconds that a key may be held before the server repeats it, at the slowest setting.
constexpr xcb_timestamp_t longestRepeatDelay = 3000;

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

FreedGrabs::FreedGrabs(Connection& connection, std::function<void()> handler)
    : connection_(connection), handler_(std::move(handler)),
      recording_(xcb_connect(connection.display().c_str(), nullptr)) {
    const auto* const extension = xcb_get_extension_data(recording_.get(), &xcb_record_id);
    if (extension != nullptr && extension->present != 0) {
        record();
    }
}

FreedGrabs::~FreedGrabs() {
    readable_.reset();
    if (context_ != 0) {
        // The server does not listen to the connection that it records for.
        xcb_record_free_context(connection_.get(), context_);
        connection_.flush();
    }
}

void FreedGrabs::record() {
    xcb_record_range_t wish{};
    wish.core_requests = {XCB_UNGRAB_KEY, XCB_UNGRAB_KEY};
    wish.client_died = 1;
    const xcb_record_client_spec_t clients = XCB_RECORD_CS_ALL_CLIENTS;
    context_ = xcb_generate_id(recording_.get());
    xcb_record_create_context(recording_.get(), context_, 0, 1, 1, &clients, &wish);
    request_ = xcb_record_enable_context(recording_.get(), context_).sequence;
    xcb_flush(recording_.get());
    readable_ = connection_.watcher().watchReadable(xcb_get_file_descriptor(recording_.get()),
                                                    [this] { read(); });
}

void FreedGrabs::read() {
    bool told = false;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (xcb_poll_for_reply(recording_.get(), request_, &answer, &error) != 0) {
        const Reply<void> reply(answer);
        const Reply<xcb_generic_error_t> failure(error);
        if (!reply) {
            // The descriptor of a connection that has ended is readable for ever.
            readable_.reset();
            break;
        }
        told = true;
    }
    if (told) {
        const auto handler = handler_;
        handler();
    }
}

X11HotKeys::X11HotKeys(Connection& connection, Keyboard& keyboard)
    : connection_(connection), keyboard_(keyboard) {}

Token X11HotKeys::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, HotKeyID id) {
    if (connection_.isLost()) {
        return {};
    }
    if (!events_) {
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
        keyboardChange_ = keyboard_.onChange([this] { grabAnew(); });
    }
    HotKey hotKey{
        ++lastNumber_, static_cast<std::uint16_t>(keyCode), nativeModifiers(modifiers), id, {}};
    grab(hotKey);
    const int number = hotKey.number;
    hotKeys_.push_back(std::move(hotKey));
    awaitOthers();
    return Token(lifetime_.guard([this, number] { unregister(number); }));
}

void X11HotKeys::unregister(int number) {
    const auto found = std::ranges::find(hotKeys_, number, &HotKey::number);
    for (const Combination& combination : found->grabbed) {
        ungrab(combination);
    }
    connection_.flush();
    hotKeys_.erase(found);
    awaitOthers();
}

void X11HotKeys::grab(HotKey& hotKey) {
    const auto wanted = combinationsOf(hotKey);
    const auto had = std::exchange(hotKey.grabbed, {});
    std::vector<std::pair<Combination, xcb_void_cookie_t>> requests;
    for (const Combination& combination : wanted) {
        if (std::ranges::find(had, combination) != had.end()) {
            hotKey.grabbed.push_back(combination);
        } else {
            requests.emplace_back(combination,
                                  xcb_grab_key_checked(connection_.get(), 0, connection_.root(),
                                                       combination.modifiers, combination.key,
                                                       XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    for (const auto& [combination, request] : requests) {
        if (!connection_.failed(request)) {
            hotKey.grabbed.push_back(combination);
        }
    }
    for (const Combination& combination : had) {
        if (std::ranges::find(wanted, combination) == wanted.end()) {
            ungrab(combination);
        }
    }
    connection_.flush();
    hotKey.isWhole = hotKey.grabbed.size() == wanted.size();
}

std::vector<X11HotKeys::Combination> X11HotKeys::combinationsOf(const HotKey& hotKey) {
    std::vector<Combination> combinations;
    for (const xcb_keycode_t key : keyboard_.keysOf(hotKey.keyCode)) {
        for (const std::uint16_t locks : subsetsOf(keyboard_.lockBits())) {
            combinations.push_back({key, static_cast<std::uint16_t>(hotKey.modifiers | locks)});
        }
    }
    return combinations;
}

void X11HotKeys::ungrab(const Combination& combination) {
    xcb_ungrab_key(connection_.get(), combination.key, connection_.root(), combination.modifiers);
}

void X11HotKeys::grabAnew() {
    // The server tells of a change whenever another keyboard is typed on, with the first key of a
    // shortcut, that is: what stays the same must not be let go even for a moment.
    for (HotKey& hotKey : hotKeys_) {
        grab(hotKey);
    }
    awaitOthers();
}

void X11HotKeys::awaitOthers() {
    if (std::ranges::all_of(hotKeys_, &HotKey::isWhole)) {
        freedGrabs_.reset();
        return;
    }
    if (!freedGrabs_) {
        freedGrabs_.emplace(connection_, [this] { grabAnew(); });
    }
    if (const auto tell = std::exchange(onTaken_, nullptr)) {
        tell();
    }
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_KEY_PRESS) {
        press(eventAs<xcb_key_press_event_t>(event));
    } else if (typeOf(event) == XCB_KEY_RELEASE && heldKey_ &&
               eventAs<xcb_key_release_event_t>(event).detail == heldKey_->key) {
        heldKey_.reset();
    }
}

void X11HotKeys::press(const xcb_key_press_event_t& event) {
    // A key that is held down is pressed again and again. That it was let go of may never be told,
    // as when its keyboard is unplugged.
    if (heldKey_ && heldKey_->key == event.detail &&
        event.time - std::exchange(heldKey_->lastPressed, event.time) < longestRepeatDelay) {
        return;
    }
    const auto modifiers =
        static_cast<std::uint16_t>(event.state & modifierBits & ~keyboard_.lockBits());
    const auto found = std::ranges::find_if(hotKeys_, [&](const HotKey& hotKey) {
        return hotKey.modifiers == modifiers &&
               std::ranges::find(hotKey.grabbed, event.detail, &Combination::key) !=
                   hotKey.grabbed.end();
    });
    if (found != hotKeys_.end()) {
        heldKey_ = HeldKey{event.detail, event.time};
        const HotKeyEvent pressed{found->id};
        // The newest that takes it keeps it from the others.
        handlers_.callUntil(noErr, &pressed);
    }
}

} // namespace lumetry::x11
