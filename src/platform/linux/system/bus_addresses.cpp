#include "platform/linux/system/bus_addresses.h"

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

} // namespace lumetry
