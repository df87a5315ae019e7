#include "platform/linux/bus/bus.h"

namespace lumetry {

Bus openBus(const std::string& address) {
    Bus bus(address.empty() ? nullptr : dbus_connection_open_private(address.c_str(), nullptr));
    if (bus && dbus_bus_register(bus.get(), nullptr) == FALSE) {
        bus.reset();
    }
    if (bus) {
        dbus_connection_set_exit_on_disconnect(bus.get(), FALSE);
    }
    return bus;
}

} // namespace lumetry
