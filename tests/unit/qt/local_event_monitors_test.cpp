#include "platform/qt/widgets/qt_local_event_monitors.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>
#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr std::uint32_t shiftKey = 50;
constexpr std::uint32_t mKey = 58;

TEST(QtLocalEventMonitors, HearAKeyWhateverTheModifiersDidElsewhere) {
    int argc = 1;
    std::string name = "test";
    std::array<char*, 2> argv = {name.data(), nullptr};
    const QGuiApplication application(argc, argv.data());
    QWindow window;
    ModifierFlags held = 0;
    QtLocalEventMonitors monitors(
        {[](const QKeyEvent& key) {
             return key.nativeScanCode() == mKey ? keyCodeM : keyCodeUnknown;
         },
         [](const QKeyEvent& key) { return key.nativeScanCode() == shiftKey; },
         [&](const QKeyEvent* /*key*/) { return held; }});
    std::vector<Event> events;
    const Token token = monitors.addLocalMonitorForEvents(0xFFFFFFFF, [&](const Event& event) {
        events.push_back(event);
        return event.type == EventType::keyDown ? EventFate::swallow : EventFate::passOn;
    });
    // The window ignores what reaches it.
    const auto isSwallowed = [&](QEvent::Type type, std::uint32_t native) {
        QKeyEvent key(type, 0, Qt::NoModifier, native, 0, 0);
        QCoreApplication::sendEvent(&window, &key);
        return key.isAccepted();
    };
    held = modifierShift;
    EXPECT_FALSE(isSwallowed(QEvent::KeyPress, shiftKey));
    // Shift is let go while another window has the keyboard.
    held = 0;
    EXPECT_TRUE(isSwallowed(QEvent::KeyPress, mKey));
    EXPECT_FALSE(isSwallowed(QEvent::KeyRelease, mKey));
    held = modifierOption;
    QFocusEvent focus(QEvent::FocusIn);
    QCoreApplication::sendEvent(&window, &focus);
    const auto flagsChanged = EventType::flagsChanged;
    EXPECT_THAT(events, testing::ElementsAre(Event{flagsChanged, keyCodeUnknown, modifierShift},
                                             Event{flagsChanged, keyCodeM, 0},
                                             Event{EventType::keyDown, keyCodeM, 0},
                                             Event{flagsChanged, keyCodeUnknown, modifierOption}));
}

TEST(QtKeyboardReader, TellsTheModifiersAfterAnEvent) {
    const KeyboardReader keyboard = qtKeyboardReader();
    const auto flags = [&](QEvent::Type type, int key, Qt::KeyboardModifiers before) {
        const QKeyEvent event(type, key, before);
        return keyboard.modifierFlags(&event);
    };
    EXPECT_EQ(flags(QEvent::KeyPress, Qt::Key_Shift, Qt::NoModifier), modifierShift);
    EXPECT_EQ(flags(QEvent::KeyPress, Qt::Key_Control, Qt::ShiftModifier),
              modifierShift | modifierControl);
    EXPECT_EQ(flags(QEvent::KeyRelease, Qt::Key_Shift, Qt::ShiftModifier | Qt::ControlModifier),
              modifierControl);
    EXPECT_EQ(flags(QEvent::KeyPress, Qt::Key_M, Qt::AltModifier), modifierOption);
    EXPECT_EQ(keyboard.keyCode(QKeyEvent(QEvent::KeyPress, Qt::Key_M, Qt::NoModifier)), keyCodeM);
    EXPECT_TRUE(keyboard.isModifier(QKeyEvent(QEvent::KeyPress, Qt::Key_AltGr, Qt::NoModifier)));
}

} // namespace
} // namespace lumetry
