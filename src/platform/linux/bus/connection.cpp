#include "platform/linux/bus/connection.h"

#include "platform/linux/system/environment.h"

#include <unistd.h>

namespace lumetry {

std::string sessionBusAddress() {
    std::string address = environmentText("DBUS_SESSION_BUS_ADDRESS");
    const std::string socket = environmentText("XDG_RUNTIME_DIR") + "/bus";
    if (address.empty() && access(socket.c_str(), F_OK) == 0) {
        address = "unix:path=" + socket;
    }
    return address;
}

std::string systemBusAddress() {
    return environmentText("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/var/run/dbus/system_bus_socket");
}

BusConnection openBus(const std::string& address) {
    BusConnection bus(address.empty() ? nullptr
                                      : dbus_connection_open_private(address.c_str(), nullptr));
    if (bus && dbus_bus_register(bus.get(), nullptr) == FALSE) {
        bus.reset();
    }
    if (bus) {
        dbus_connection_set_exit_on_disconnect(bus.get(), FALSE);
    }
    return bus;
}

} // namespace lumetry
