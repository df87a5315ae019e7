#include "platform/linux/kwin/global_shortcuts.h"

#include "platform/linux/kwin/patience.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace lumetry::kwin {
namespace {

constexpr const char* service = "org.kde.kglobalaccel";
constexpr const char* path = "/kglobalaccel";
constexpr const char* interface = "org.kde.KGlobalAccel";
constexpr const char* componentInterface = "org.kde.kglobalaccel.Component";
constexpr const char* component = "app.lumetry.Lumetry";
const std::vector<std::string> takenWhileInspecting = {"leave", "pin"};
/// The action of the one hot key.
constexpr const char* hotKeyAction = "inspect";
/// Active now, and not what the user has set earlier for the same action.
constexpr dbus_uint32_t presentAndFixed = 2 | 4;

BusMessage callOf(const char* method) {
    BusMessage call(dbus_message_new_method_call(service, path, interface, method));
    dbus_message_set_auto_start(call.get(), FALSE); // it is KWin's, or nobody's
    return call;
}

void appendTexts(DBusMessageIter& arguments, const std::vector<std::string>& texts) {
    DBusMessageIter list;
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING_AS_STRING,
                                     &list);
    for (const std::string& text : texts) {
        const char* letters = text.c_str();
        dbus_message_iter_append_basic(&list, DBUS_TYPE_STRING, &letters);
    }
    dbus_message_iter_close_container(&arguments, &list);
}

std::vector<std::string> actionId(const std::string& action, const std::string& title) {
    return {component, action, "Lumetry", title};
}

/// The first key that KWin has given to the action; 0 for none.
int keyIn(DBusMessage& answer) {
    DBusMessageIter arguments;
    if (dbus_message_iter_init(&answer, &arguments) == FALSE ||
        dbus_message_iter_get_arg_type(&arguments) != DBUS_TYPE_ARRAY) {
        return 0;
    }
    DBusMessageIter item;
    dbus_message_iter_recurse(&arguments, &item);
    dbus_int32_t key = 0;
    if (dbus_message_iter_get_arg_type(&item) == DBUS_TYPE_INT32) {
        dbus_message_iter_get_basic(&item, &key);
    }
    return key;
}

} // namespace

GlobalShortcuts::GlobalShortcuts(FileDescriptorWatcher& watcher, RunLoop& runLoop)
    : runLoop_(runLoop), bus_(openBus(sessionBusAddress())) {
    if (!bus_) {
        return;
    }
    reader_.emplace(*bus_, watcher, runLoop, [this] { read(); });
    keeper_.emplace(*reader_, service);
    reader_->listen(std::string("type='signal',interface='") + componentInterface +
                    "',member='globalShortcutPressed'");
}

Token GlobalShortcuts::take(const std::string& action, const std::string& title, int key,
                            std::function<void()> handler) {
    auto shortcut = std::make_shared<Shortcut>(Shortcut{action, title, key, std::move(handler)});
    shortcuts_.push_back(shortcut);
    enrol(shortcut);
    return Token(lifetime_.guard([this, shortcut = std::weak_ptr(shortcut)] {
        if (const auto held = shortcut.lock()) {
            std::erase(shortcuts_, held);
            const bool another = std::ranges::any_of(
                shortcuts_, [&](const auto& other) { return other->action == held->action; });
            if (!another) {
                release(held->action);
            }
        }
    }));
}

/// Has KWin keep the key, which is asked again later where it does not.
void GlobalShortcuts::enrol(const std::shared_ptr<Shortcut>& shortcut) {
    if (!bus_) {
        return;
    }
    const auto id = actionId(shortcut->action, shortcut->title);
    const BusMessage enrolment = callOf("doRegister");
    DBusMessageIter arguments;
    dbus_message_iter_init_append(enrolment.get(), &arguments);
    appendTexts(arguments, id);
    const BusMessage set = callOf("setShortcut");
    dbus_message_iter_init_append(set.get(), &arguments);
    appendTexts(arguments, id);
    DBusMessageIter keys;
    const dbus_int32_t number = shortcut->key;
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, DBUS_TYPE_INT32_AS_STRING, &keys);
    dbus_message_iter_append_basic(&keys, DBUS_TYPE_INT32, &number);
    dbus_message_iter_close_container(&arguments, &keys);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UINT32, &presentAndFixed);
    const auto answer = reader_->answerTo(enrolment, patienceMilliseconds)
                            ? reader_->answerTo(set, patienceMilliseconds)
                            : nullptr;
    if (!answer) {
        constexpr double pauseSeconds = 2;
        runLoop_.after(pauseSeconds, lifetime_.guard([this, later = std::weak_ptr(shortcut)] {
            if (const auto held = later.lock()) {
                enrol(held);
            }
        }));
    } else if (shortcut->action == hotKeyAction && keyIn(*answer) != shortcut->key && onTaken_) {
        std::exchange(onTaken_, nullptr)();
    }
}

void GlobalShortcuts::release(const std::string& action) {
    if (!bus_) {
        return;
    }
    const BusMessage call = callOf("unregister");
    const char* name = component;
    const char* letters = action.c_str();
    dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_STRING, &letters,
                             DBUS_TYPE_INVALID);
    dbus_message_set_no_reply(call.get(), TRUE);
    reader_->send(call);
}

void GlobalShortcuts::read() {
    const bool connected = dbus_connection_read_write(bus_.get(), 0) != FALSE;
    while (const BusMessage message{dbus_connection_pop_message(bus_.get())}) {
        handle(*message);
    }
    if (!connected) {
        reader_.reset();
        bus_.reset();
    }
}

void GlobalShortcuts::handle(DBusMessage& message) {
    const char* pressedComponent = nullptr;
    const char* action = nullptr;
    if (keeper_->take(message) || !keeper_->hasSent(message) ||
        dbus_message_is_signal(&message, componentInterface, "globalShortcutPressed") == FALSE ||
        dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &pressedComponent,
                              DBUS_TYPE_STRING, &action, DBUS_TYPE_INVALID) == FALSE ||
        std::string_view(pressedComponent) != component) {
        return;
    }
    const auto shortcuts = shortcuts_;
    for (const auto& shortcut : shortcuts) {
        if (shortcut->action == action) {
            shortcut->handler();
        }
    }
}

Token GlobalShortcuts::installEventHandler(Handler handler) {
    return handlers_.add(std::move(handler));
}

Token GlobalShortcuts::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                           HotKeyID id) {
    constexpr int shift = 0x02000000;
    constexpr int control = 0x04000000;
    constexpr int letterM = 0x4D;
    if (keyCode != keyCodeM) {
        return {};
    }
    // Only the program that inspects has a hot key. One that was killed may have left what it took
    // behind, Escape among it.
    for (const std::string& action : takenWhileInspecting) {
        release(action);
    }
    const int key = letterM | ((modifiers & hotKeyShift) != 0 ? shift : 0) |
                    ((modifiers & hotKeyControl) != 0 ? control : 0);
    return take(hotKeyAction, "Inspect mode on and off", key, [this, id] {
        const HotKeyEvent event = {id};
        handlers_.callUntil(noErr, &event);
    });
}

} // namespace lumetry::kwin
