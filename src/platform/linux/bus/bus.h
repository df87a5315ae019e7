#pragma once

#include "platform/linux/system/bus_addresses.h"

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
using Bus = std::unique_ptr<DBusConnection, CloseBus>;

/// Connects to a bus; null when there is none, or it lets nobody in. That the bus goes away does
/// not end this process.
/// @param address such as sessionBusAddress or systemBusAddress; empty when there is no bus
[[nodiscard]] Bus openBus(const std::string& address);

} // namespace lumetry
