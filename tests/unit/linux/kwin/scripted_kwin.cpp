#include "scripted_kwin.h"

#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>
#include <vector>

namespace lumetry::test {
namespace {

/// Of each window, in pixels.
constexpr dbus_uint32_t width = 40;
constexpr dbus_uint32_t height = 20;

void appendNumber(DBusMessageIter& entries, const char* name, dbus_uint32_t value) {
    DBusMessageIter entry;
    DBusMessageIter variant;
    dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
    dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, DBUS_TYPE_UINT32_AS_STRING,
                                     &variant);
    dbus_message_iter_append_basic(&variant, DBUS_TYPE_UINT32, &value);
    dbus_message_iter_close_container(&entry, &variant);
    dbus_message_iter_close_container(&entries, &entry);
}

} // namespace

ScriptedKWin::ScriptedKWin(std::string windows)
    : windows_(std::move(windows)), connection_(openBus(bus_.address())) {
    dbus_threads_init_default();
    if (!connection_) {
        throw std::runtime_error("the bus lets nobody in");
    }
    for (const char* const name : {"org.kde.KWin", "org.kde.kglobalaccel"}) {
        dbus_bus_request_name(connection_.get(), name, 0, nullptr);
    }
    server_ = std::thread([this] { serve(); });
}

ScriptedKWin::~ScriptedKWin() {
    ends_ = true;
    server_.join();
}

void ScriptedKWin::serve() {
    constexpr int milliseconds = 5;
    while (!ends_ && dbus_connection_read_write(connection_.get(), milliseconds) != FALSE) {
        while (const BusMessage message{dbus_connection_pop_message(connection_.get())}) {
            if (answers && dbus_message_get_type(message.get()) == DBUS_MESSAGE_TYPE_METHOD_CALL) {
                handle(*message);
            }
        }
    }
}

void ScriptedKWin::handle(DBusMessage& call) {
    const std::string member = dbus_message_get_member(&call);
    if (dbus_message_get_no_reply(&call) != FALSE) {
        return;
    }
    if (member == "CaptureWindow") {
        capture(call);
        return;
    }
    const BusMessage answer(dbus_message_new_method_return(&call));
    const dbus_int32_t number = 1;
    const dbus_bool_t isLoaded = hasScript ? TRUE : FALSE;
    if (member == "loadScript") {
        dbus_message_append_args(answer.get(), DBUS_TYPE_INT32, &number, DBUS_TYPE_INVALID);
    } else if (member == "isScriptLoaded") {
        // A word of the script's comes before what the program waits for.
        tell("pointer", "3 4");
        dbus_message_append_args(answer.get(), DBUS_TYPE_BOOLEAN, &isLoaded, DBUS_TYPE_INVALID);
    } else if (member == "setShortcut") {
        DBusMessageIter arguments;
        DBusMessageIter list;
        dbus_int32_t key = 0;
        dbus_message_iter_init(&call, &arguments);
        dbus_message_iter_next(&arguments);
        dbus_message_iter_recurse(&arguments, &list);
        dbus_message_iter_get_basic(&list, &key);
        const std::array<dbus_int32_t, 1> given = {gives ? key : 0};
        const dbus_int32_t* const first = given.data();
        dbus_message_append_args(answer.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_INT32, &first, 1,
                                 DBUS_TYPE_INVALID);
        ++keys;
    }
    dbus_connection_send(connection_.get(), answer.get(), nullptr);
    if (member == "run") {
        {
            const std::lock_guard lock(guard_);
            program_ = dbus_message_get_sender(&call);
        }
        ++scripts;
        hasScript = true;
        tell("pointer", "1 2");
        tell("windows", windows_);
    }
    dbus_connection_flush(connection_.get());
}

void ScriptedKWin::capture(DBusMessage& call) {
    ++captures;
    const char* window = nullptr;
    DBusMessageIter arguments;
    dbus_message_iter_init(&call, &arguments);
    dbus_message_iter_get_basic(&arguments, &window);
    dbus_message_iter_next(&arguments);
    dbus_message_iter_next(&arguments);
    int pipe = -1;
    dbus_message_iter_get_basic(&arguments, &pipe);
    const bool isGone = std::string(window) == "{gone}";
    const BusMessage answer(
        isGone ? dbus_message_new_error(&call, "org.kde.KWin.ScreenShot2.Error.InvalidWindow", "")
               : dbus_message_new_method_return(&call));
    if (!isGone) {
        DBusMessageIter at;
        DBusMessageIter entries;
        constexpr dbus_uint32_t rgba = 18;
        dbus_message_iter_init_append(answer.get(), &at);
        dbus_message_iter_open_container(&at, DBUS_TYPE_ARRAY, "{sv}", &entries);
        appendNumber(entries, "width", width);
        appendNumber(entries, "height", height);
        appendNumber(entries, "stride", width * sizeof(std::uint32_t));
        appendNumber(entries, "format", rgba);
        dbus_message_iter_close_container(&at, &entries);
    }
    dbus_connection_send(connection_.get(), answer.get(), nullptr);
    dbus_connection_flush(connection_.get());
    const std::vector<std::uint32_t> pixels(isGone ? 0 : width * height, color);
    [[maybe_unused]] const auto written =
        write(pipe, pixels.data(), pixels.size() * sizeof(std::uint32_t));
    close(pipe);
}

BusMessage ScriptedKWin::toProgram(const char* method, const std::string& text) {
    const std::lock_guard lock(guard_);
    BusMessage call(dbus_message_new_method_call(program_.c_str(), "/app/lumetry/KWin",
                                                 "app.lumetry.KWin", method));
    const char* const letters = text.c_str();
    dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &letters, DBUS_TYPE_INVALID);
    dbus_message_set_no_reply(call.get(), TRUE);
    return call;
}

void ScriptedKWin::tell(const char* method, const std::string& text) {
    dbus_connection_send(connection_.get(), toProgram(method, text).get(), nullptr);
    dbus_connection_flush(connection_.get());
}

void ScriptedKWin::pretend(const char* method, const std::string& text) {
    const auto stranger = openBus(bus_.address());
    dbus_connection_send(stranger.get(), toProgram(method, text).get(), nullptr);
    // The bus answers once it has passed that on.
    dbus_bus_name_has_owner(stranger.get(), "org.kde.KWin", nullptr);
}

void ScriptedKWin::press(const std::string& action) {
    const BusMessage signal(dbus_message_new_signal(
        "/component/lumetry", "org.kde.kglobalaccel.Component", "globalShortcutPressed"));
    const char* const component = "app.lumetry.Lumetry";
    const char* const name = action.c_str();
    const dbus_int64_t time = 0;
    dbus_message_append_args(signal.get(), DBUS_TYPE_STRING, &component, DBUS_TYPE_STRING, &name,
                             DBUS_TYPE_INT64, &time, DBUS_TYPE_INVALID);
    dbus_connection_send(connection_.get(), signal.get(), nullptr);
    dbus_connection_flush(connection_.get());
}

} // namespace lumetry::test
