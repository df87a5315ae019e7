#include "platform/qt/widgets/keyboard_reader.h"

#include <QGuiApplication>
#include <QKeyEvent>

namespace lumetry {
namespace {

ModifierFlags flagOf(int key) {
    switch (key) {
    case Qt::Key_Shift:
        return modifierShift;
    case Qt::Key_Control:
        return modifierControl;
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
        return modifierOption;
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return modifierCommand;
    default:
        return 0;
    }
}

ModifierFlags flagsOf(Qt::KeyboardModifiers modifiers) {
    return (modifiers.testFlag(Qt::ShiftModifier) ? modifierShift : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? modifierControl : 0) |
           (modifiers.testFlag(Qt::AltModifier) ? modifierOption : 0) |
           (modifiers.testFlag(Qt::MetaModifier) ? modifierCommand : 0);
}

std::uint16_t codeOf(const QKeyEvent& key) {
    switch (key.key()) {
    case Qt::Key_Escape:
        return keyCodeEscape;
    case Qt::Key_M:
        return keyCodeM;
    default:
        return keyCodeUnknown;
    }
}

/// An event carries the state before it.
ModifierFlags flagsAfter(const QKeyEvent* key) {
    if (key == nullptr) {
        return flagsOf(QGuiApplication::queryKeyboardModifiers());
    }
    const ModifierFlags own = flagOf(key->key());
    const ModifierFlags before = flagsOf(key->modifiers());
    return key->type() == QEvent::KeyPress ? before | own : before & ~own;
}

} // namespace

KeyboardReader qtKeyboardReader() {
    return {codeOf, [](const QKeyEvent& key) { return flagOf(key.key()) != 0; }, flagsAfter};
}

} // namespace lumetry
