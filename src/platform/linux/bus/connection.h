#pragma once

#include <dbus/dbus.h>

#include <memory>
#include <string>

namespace lumetry {

/// A connection that nobody else uses, and the reference to it.
struct CloseBus {
    void operator()(DBusConnection* connection) const {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
};
using BusConnection = std::unique_ptr<DBusConnection, CloseBus>;

struct UnrefBusMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, UnrefBusMessage>;

/// Where the session bus is; empty when nothing says so. Without an address libdbus would start a
/// bus of its own, which no application is on.
[[nodiscard]] std::string sessionBusAddress();
/// Where the system bus is, if there is one.
[[nodiscard]] std::string systemBusAddress();

/// Connects to a bus; null when there is none, or it lets nobody in. That the bus goes away does
/// not end this process.
/// @param address such as sessionBusAddress or systemBusAddress; empty when there is no bus
[[nodiscard]] BusConnection openBus(const std::string& address);

} // namespace lumetry
