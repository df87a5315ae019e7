#include "platform/linux/system/bus_addresses.h"

#include <unistd.h>

#include <cstdlib>

namespace lumetry {
namespace {

/// Empty when it is not set.
std::string variable(const char* name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment meanwhile
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

std::string sessionBusAddress() {
    std::string address = variable("DBUS_SESSION_BUS_ADDRESS");
    const std::string socket = variable("XDG_RUNTIME_DIR") + "/bus";
    if (address.empty() && access(socket.c_str(), F_OK) == 0) {
        address = "unix:path=" + socket;
    }
    return address;
}

std::string systemBusAddress() {
    const std::string address = variable("DBUS_SYSTEM_BUS_ADDRESS");
    return address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address;
}

} // namespace lumetry
