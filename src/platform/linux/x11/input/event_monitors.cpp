#include "platform/linux/x11/input/event_monitors.h"

#include "platform/linux/x11/windows/reader.h"

#include <xcb/xinput.h>

#include <unistd.h>

#include <memory>
#include <utility>

namespace lumetry::x11 {
namespace {

constexpr std::uint32_t firstScrollButton = 4;
constexpr std::uint32_t lastScrollButton = 7;

/// Which axes a raw motion carries. The first two are the place; touchpads and wheels scroll by
/// further ones.
struct Axes {
    bool place = false;
    bool others = false;
};

Axes axesOf(const xcb_input_raw_motion_event_t& motion) {
    constexpr std::uint32_t placeBits = 0b11;
    const std::uint32_t* const mask = xcb_input_raw_button_press_valuator_mask(&motion);
    Axes axes;
    for (int i = 0; i < xcb_input_raw_button_press_valuator_mask_length(&motion); ++i) {
        const std::uint32_t place = i == 0 ? mask[i] & placeBits : 0;
        axes.place = axes.place || place != 0;
        axes.others = axes.others || (mask[i] & ~place) != 0;
    }
    return axes;
}

} // namespace

X11EventMonitors::X11EventMonitors(Connection& connection, X11Windows& windows, Keyboard& keyboard)
    : connection_(connection), windows_(windows), keyboard_(keyboard) {}

Token X11EventMonitors::addGlobalMonitorForEvents(EventMask mask,
                                                  std::function<void(const Event&)> handler) {
    if (connection_.isLost()) {
        return {};
    }
    auto inner = std::make_shared<Token>(
        handlers_.add([mask, handler = std::move(handler)](const Event& event) {
            if ((eventMask(event.type) & mask) != 0) {
                handler(event);
            }
        }));
    selectRawEvents();
    return Token(lifetime_.guard([this, inner] {
        inner->reset();
        selectRawEvents();
    }));
}

void X11EventMonitors::selectRawEvents() {
    const bool isWanted = !handlers_.isEmpty();
    if (isWanted == static_cast<bool>(events_)) {
        return;
    }
    struct {
        xcb_input_event_mask_t header{XCB_INPUT_DEVICE_ALL_MASTER, 1};
        std::uint32_t mask = 0;
    } wish;
    if (isWanted) {
        wish.mask = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                    XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
        batches_ = connection_.onEventsHandled([this] { deliverMotion(); });
    } else {
        events_.reset();
        batches_.reset();
        moved_ = scrolled_ = false;
    }
    xcb_input_xi_select_events(connection_.get(), connection_.root(), 1, &wish.header);
    connection_.flush();
}

void X11EventMonitors::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != XCB_GE_GENERIC ||
        eventAs<xcb_ge_generic_event_t>(event).extension != connection_.extensions().inputOpcode) {
        return;
    }
    switch (eventAs<xcb_ge_generic_event_t>(event).event_type) {
    case XCB_INPUT_RAW_MOTION: {
        const Axes axes = axesOf(eventAs<xcb_input_raw_motion_event_t>(event));
        moved_ = moved_ || axes.place;
        scrolled_ = scrolled_ || (axes.others && !axes.place);
        break;
    }
    case XCB_INPUT_RAW_BUTTON_PRESS: {
        const auto button = eventAs<xcb_input_raw_button_press_event_t>(event).detail;
        scrolled_ = scrolled_ || (button >= firstScrollButton && button <= lastScrollButton);
        break;
    }
    case XCB_INPUT_RAW_KEY_PRESS:
    case XCB_INPUT_RAW_KEY_RELEASE: {
        const auto& key = eventAs<xcb_input_raw_key_press_event_t>(event);
        handleKey(key.detail, key.event_type == XCB_INPUT_RAW_KEY_PRESS);
        break;
    }
    default:
        break;
    }
}

void X11EventMonitors::handleKey(std::uint32_t key, bool pressed) {
    const bool modifier = keyboard_.isModifier(key);
    if (!modifier && !pressed) {
        return;
    }
    // What was done with the pointer before the key is told before the key.
    deliverMotion();
    if (!ownWindowHasFocus()) {
        handlers_.call(
            {modifier ? EventType::flagsChanged : EventType::keyDown, keyboard_.keyCode(key)});
    }
}

void X11EventMonitors::deliverMotion() {
    const bool moved = std::exchange(moved_, false);
    const bool scrolled = std::exchange(scrolled_, false);
    if ((!moved && !scrolled) || pointerIsOnOwnWindow()) {
        return;
    }
    if (moved) {
        handlers_.call({EventType::mouseMoved});
    }
    if (scrolled) {
        handlers_.call({EventType::scrollWheel});
    }
}

bool X11EventMonitors::pointerIsOnOwnWindow() {
    if (!windows_.hasOwnOnScreen()) {
        return false;
    }
    // The server's answer leaves out windows that let the pointer through.
    const auto pointer = connection_.reply(
        xcb_query_pointer_reply, xcb_query_pointer(connection_.get(), connection_.root()));
    return pointer && windows_.isOwn(pointer->child);
}

bool X11EventMonitors::ownWindowHasFocus() {
    if (!windows_.hasOwnOnScreen()) {
        return false;
    }
    const auto focus =
        connection_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_.get()));
    if (!focus) {
        return false;
    }
    if (focus->focus <= XCB_INPUT_FOCUS_POINTER_ROOT) {
        return focus->focus == XCB_INPUT_FOCUS_POINTER_ROOT && pointerIsOnOwnWindow();
    }
    return takeOwner(connection_, requestOwner(connection_, focus->focus)) == getpid();
}

} // namespace lumetry::x11
