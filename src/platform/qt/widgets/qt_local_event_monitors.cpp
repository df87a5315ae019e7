#include "platform/qt/widgets/qt_local_event_monitors.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <utility>

namespace lumetry {

QtLocalEventMonitors::QtLocalEventMonitors(KeyboardReader keyboard)
    : keyboard_(std::move(keyboard)) {
    qGuiApp->installEventFilter(this);
}

Token QtLocalEventMonitors::addLocalMonitorForEvents(EventMask mask, Handler handler) {
    flags_ = keyboard_.modifierFlags(nullptr);
    return monitors_.add([mask, handler = std::move(handler)](const Event& event) {
        return (mask & eventMask(event.type)) != 0 ? handler(event) : EventFate::passOn;
    });
}

bool QtLocalEventMonitors::eventFilter(QObject* watched, QEvent* event) {
    // Windows get a key before the widget in them that has the focus does.
    if (!watched->isWindowType() || monitors_.isEmpty()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::FocusIn:
        // Modifiers may have come and gone while another program had the keyboard.
        deliverFlags(keyCodeUnknown, nullptr);
        return false;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return deliverKey(static_cast<const QKeyEvent&>(*event)) == EventFate::swallow;
    default:
        return false;
    }
}

EventFate QtLocalEventMonitors::deliverKey(const QKeyEvent& key) {
    const std::uint16_t keyCode = keyboard_.keyCode(key);
    if (deliverFlags(keyCode, &key) == EventFate::swallow) {
        return EventFate::swallow;
    }
    if (key.type() != QEvent::KeyPress || keyboard_.isModifier(key)) {
        return EventFate::passOn;
    }
    return deliver({EventType::keyDown, keyCode, flags_});
}

EventFate QtLocalEventMonitors::deliverFlags(std::uint16_t keyCode, const QKeyEvent* key) {
    const ModifierFlags flags = keyboard_.modifierFlags(key);
    if (std::exchange(flags_, flags) == flags) {
        return EventFate::passOn;
    }
    return deliver({EventType::flagsChanged, keyCode, flags});
}

EventFate QtLocalEventMonitors::deliver(const Event& event) {
    return monitors_.callUntil(EventFate::swallow, event) ? EventFate::swallow : EventFate::passOn;
}

} // namespace lumetry
