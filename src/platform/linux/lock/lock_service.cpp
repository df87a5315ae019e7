#include "platform/linux/lock/lock_service.h"

#include <chrono>

namespace lumetry {

LockService::LockService(FileDescriptorWatcher& watcher, Bus bus) : bus_(std::move(bus)) {
    int descriptor = -1;
    if (bus_ && dbus_connection_get_unix_fd(bus_.get(), &descriptor) != FALSE) {
        readable_ = watcher.watchReadable(descriptor, [this] { read(0); });
    }
}

void LockService::awaitAnswers(int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (bus_ && unanswered_ > 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return;
        }
        read(static_cast<int>(left.count()));
    }
}

void LockService::listen(const std::string& rule) {
    if (bus_) {
        dbus_bus_add_match(bus_.get(), rule.c_str(), nullptr);
    }
}

void LockService::ask(const char* name, const std::string& path, const char* interface,
                      const char* method, const std::vector<const char*>& parameters) {
    const BusMessage call(dbus_message_new_method_call(name, path.c_str(), interface, method));
    if (!bus_ || !call) {
        return;
    }
    for (const char* parameter : parameters) {
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &parameter, DBUS_TYPE_INVALID);
    }
    // Who does not run has locked nothing.
    dbus_message_set_auto_start(call.get(), FALSE);
    unanswered_ += dbus_connection_send(bus_.get(), call.get(), nullptr) != FALSE ? 1 : 0;
    dbus_connection_flush(bus_.get());
}

void LockService::read(int milliseconds) {
    const bool before = locked_;
    // Sending may have taken in answers already.
    const bool arrived =
        dbus_connection_get_dispatch_status(bus_.get()) == DBUS_DISPATCH_DATA_REMAINS;
    const bool connected =
        dbus_connection_read_write(bus_.get(), arrived ? 0 : milliseconds) != FALSE;
    while (const BusMessage message{dbus_connection_pop_message(bus_.get())}) {
        handle(*message);
    }
    if (!connected) {
        // Without its bus nobody says that the screen is unlocked.
        readable_.reset();
        bus_.reset();
    }
    if (locked_ != before && onChange) {
        onChange();
    }
}

void LockService::handle(DBusMessage& message) {
    switch (dbus_message_get_type(&message)) {
    case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        --unanswered_;
        answered(message);
        break;
    case DBUS_MESSAGE_TYPE_ERROR:
        --unanswered_;
        break;
    case DBUS_MESSAGE_TYPE_SIGNAL:
        signalled(message);
        break;
    default:
        break;
    }
}

std::optional<bool> booleanIn(DBusMessage& message) {
    DBusMessageIter value;
    if (dbus_message_iter_init(&message, &value) == FALSE) {
        return std::nullopt;
    }
    if (dbus_message_iter_get_arg_type(&value) == DBUS_TYPE_VARIANT) {
        DBusMessageIter inside;
        dbus_message_iter_recurse(&value, &inside);
        value = inside;
    }
    if (dbus_message_iter_get_arg_type(&value) != DBUS_TYPE_BOOLEAN) {
        return std::nullopt;
    }
    dbus_bool_t known = FALSE;
    dbus_message_iter_get_basic(&value, &known);
    return known != FALSE;
}

} // namespace lumetry
