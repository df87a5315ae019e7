#include "platform/qt/widgets/qt_local_event_monitors.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>

namespace lumetry {

QtLocalEventMonitors::QtLocalEventMonitors(KeyboardReader keyboard)
    : keyboard_(std::move(keyboard)) {
    qGuiApp->installEventFilter(this);
}

Token QtLocalEventMonitors::addLocalMonitorForEvents(EventMask mask, Handler handler) {
    const int number = ++lastNumber_;
    flags_ = keyboard_.modifierFlags();
    monitors_.push_back({number, mask, std::make_shared<Handler>(std::move(handler))});
    return Token([self = std::weak_ptr(self_), number] {
        if (const auto monitors = self.lock()) {
            std::erase_if((*monitors)->monitors_,
                          [number](const Monitor& monitor) { return monitor.number == number; });
        }
    });
}

bool QtLocalEventMonitors::eventFilter(QObject* watched, QEvent* event) {
    // Windows get a key before the widget in them that has the focus does.
    if (!watched->isWindowType() || monitors_.empty()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::FocusIn:
        // Modifiers may have come and gone while another program had the keyboard.
        deliverFlags(keyCodeUnknown);
        return false;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return deliverKey(static_cast<const QKeyEvent&>(*event)) == EventFate::swallow;
    default:
        return false;
    }
}

EventFate QtLocalEventMonitors::deliverKey(const QKeyEvent& key) {
    const std::uint32_t native = key.nativeScanCode();
    const std::uint16_t keyCode = keyboard_.keyCode(native);
    if (deliverFlags(keyCode) == EventFate::swallow) {
        return EventFate::swallow;
    }
    if (key.type() != QEvent::KeyPress || keyboard_.isModifier(native)) {
        return EventFate::passOn;
    }
    return deliver({EventType::keyDown, keyCode, flags_});
}

EventFate QtLocalEventMonitors::deliverFlags(std::uint16_t keyCode) {
    // What a key event carries is the state before it.
    const ModifierFlags flags = keyboard_.modifierFlags();
    if (std::exchange(flags_, flags) == flags) {
        return EventFate::passOn;
    }
    return deliver({EventType::flagsChanged, keyCode, flags});
}

EventFate QtLocalEventMonitors::deliver(const Event& event) const {
    const auto monitors = monitors_;
    const bool isSwallowed =
        std::any_of(monitors.rbegin(), monitors.rend(), [&event](const auto& monitor) {
            return (monitor.mask & eventMask(event.type)) != 0 &&
                   (*monitor.handler)(event) == EventFate::swallow;
        });
    return isSwallowed ? EventFate::swallow : EventFate::passOn;
}

} // namespace lumetry
