#include "platform/linux/bus/bus_reader.h"

#include <string_view>
#include <utility>

namespace lumetry {

BusReader::BusReader(DBusConnection& bus, FileDescriptorWatcher& watcher, RunLoop& runLoop,
                     std::function<void()> read)
    : bus_(bus), runLoop_(runLoop), read_(std::move(read)) {
    int descriptor = -1;
    if (dbus_connection_get_unix_fd(&bus_, &descriptor) != FALSE) {
        readable_ = watcher.watchReadable(descriptor, lifetime_.guard([this] {
            const auto take = read_;
            take();
        }));
    }
}

BusMessage BusReader::answerTo(const BusMessage& call, int milliseconds, DBusError* error) {
    BusMessage answer(
        dbus_connection_send_with_reply_and_block(&bus_, call.get(), milliseconds, error));
    readRest();
    return answer;
}

void BusReader::send(const BusMessage& message) {
    dbus_connection_send(&bus_, message.get(), nullptr);
    dbus_connection_flush(&bus_);
    readRest();
}

void BusReader::listen(const std::string& rule) {
    dbus_bus_add_match(&bus_, rule.c_str(), nullptr);
    dbus_connection_flush(&bus_);
    readRest();
}

void BusReader::readRest() {
    if (dbus_connection_get_dispatch_status(&bus_) != DBUS_DISPATCH_DATA_REMAINS ||
        std::exchange(readsRest_, true)) {
        return;
    }
    runLoop_.async(lifetime_.guard([this] {
        readsRest_ = false;
        const auto take = read_;
        take();
    }));
}

BusNameOwner::BusNameOwner(BusReader& reader, std::string name) : name_(std::move(name)) {
    reader.listen("type='signal',sender='" DBUS_SERVICE_DBUS "',member='NameOwnerChanged',arg0='" +
                  name_ + "'");
    const BusMessage call(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                       DBUS_INTERFACE_DBUS, "GetNameOwner"));
    const char* const letters = name_.c_str();
    dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &letters, DBUS_TYPE_INVALID);
    // It is the bus itself that answers, and nobody says it again.
    constexpr int milliseconds = 5000;
    const auto answer = reader.answerTo(call, milliseconds);
    const char* owner = nullptr;
    if (answer && dbus_message_get_args(answer.get(), nullptr, DBUS_TYPE_STRING, &owner,
                                        DBUS_TYPE_INVALID) != FALSE) {
        owner_ = owner;
    }
}

bool BusNameOwner::take(DBusMessage& message) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (dbus_message_is_signal(&message, DBUS_INTERFACE_DBUS, "NameOwnerChanged") == FALSE ||
        dbus_message_has_sender(&message, DBUS_SERVICE_DBUS) == FALSE ||
        dbus_message_get_args(&message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_STRING, &before,
                              DBUS_TYPE_STRING, &after, DBUS_TYPE_INVALID) == FALSE ||
        name_ != name) {
        return false;
    }
    owner_ = after;
    return true;
}

bool BusNameOwner::hasSent(DBusMessage& message) const {
    return isThere() && dbus_message_has_sender(&message, owner_.c_str()) != FALSE;
}

} // namespace lumetry
