#include "platform/qt/widgets/qt_local_event_monitors.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace lumetry {
namespace {

ModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
    ModifierFlags flags = 0;
    flags |= modifiers.testFlag(Qt::ShiftModifier) ? modifierShift : 0;
    flags |= modifiers.testFlag(Qt::ControlModifier) ? modifierControl : 0;
    flags |= modifiers.testFlag(Qt::AltModifier) ? modifierOption : 0;
    flags |= modifiers.testFlag(Qt::MetaModifier) ? modifierCommand : 0;
    return flags;
}

} // namespace

QtLocalEventMonitors::QtLocalEventMonitors(std::function<std::uint16_t(std::uint32_t)> keyCodeOf)
    : keyCodeOf_(std::move(keyCodeOf)) {
    qGuiApp->installEventFilter(this);
}

Token QtLocalEventMonitors::addLocalMonitorForEvents(EventMask mask, Handler handler) {
    const int number = ++lastNumber_;
    flags_ = flagsOf(QGuiApplication::queryKeyboardModifiers());
    monitors_.push_back({number, mask, std::make_shared<Handler>(std::move(handler))});
    return Token([self = std::weak_ptr(self_), number] {
        if (const auto monitors = self.lock()) {
            std::erase_if((*monitors)->monitors_,
                          [number](const Monitor& monitor) { return monitor.number == number; });
        }
    });
}

bool QtLocalEventMonitors::eventFilter(QObject* watched, QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    // Windows get a key before the widget in them that has the focus does.
    if (!key || !watched->isWindowType() || monitors_.empty()) {
        return false;
    }
    return deliver(static_cast<const QKeyEvent&>(*event)) == EventFate::swallow;
}

EventFate QtLocalEventMonitors::deliver(const QKeyEvent& key) {
    Event event;
    event.keyCode = keyCodeOf_(key.nativeScanCode());
    // What the key event carries is the state before it.
    event.modifierFlags = flagsOf(QGuiApplication::queryKeyboardModifiers());
    // Layouts may have keys do other things besides: what counts is what they change.
    const bool changed = std::exchange(flags_, event.modifierFlags) != event.modifierFlags;
    if (changed) {
        event.type = EventType::flagsChanged;
    } else if (key.type() == QEvent::KeyPress) {
        event.type = EventType::keyDown;
    } else {
        return EventFate::passOn;
    }
    const auto monitors = monitors_;
    for (auto monitor = monitors.rbegin(); monitor != monitors.rend(); ++monitor) {
        if ((monitor->mask & eventMask(event.type)) != 0 &&
            (*monitor->handler)(event) == EventFate::swallow) {
            return EventFate::swallow;
        }
    }
    return EventFate::passOn;
}

} // namespace lumetry
