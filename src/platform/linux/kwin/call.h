#pragma once

#include <dbus/dbus.h>

#include <memory>

namespace lumetry::kwin {

struct UnrefBusMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, UnrefBusMessage>;

/// How long anything of KWin may hold the program up.
inline constexpr int patienceMilliseconds = 500;

/// The answer to a call; null when it is an error, or none comes in time.
[[nodiscard]] inline BusMessage answerTo(DBusConnection* bus, const BusMessage& call,
                                         int milliseconds = patienceMilliseconds) {
    return BusMessage(
        dbus_connection_send_with_reply_and_block(bus, call.get(), milliseconds, nullptr));
}

} // namespace lumetry::kwin
