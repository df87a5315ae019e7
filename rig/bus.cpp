#include "rig/bus.h"

#include <stdexcept>

namespace lumetry::desktop {
namespace {

struct FreeError {
    void operator()(GError* error) const { g_error_free(error); }
};

} // namespace

std::shared_ptr<GDBusConnection> connectToBus(const std::string& address) {
    GError* failure = nullptr;
    auto* connection = g_dbus_connection_new_for_address_sync(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &failure);
    const std::unique_ptr<GError, FreeError> error(failure);
    if (!connection) {
        throw std::runtime_error("the bus at " + address + " does not answer: " + error->message);
    }
    return {connection, [](GDBusConnection* bus) {
                g_dbus_connection_close_sync(bus, nullptr, nullptr);
                g_object_unref(bus);
            }};
}

Variant call(GDBusConnection& bus, const BusObject& object, const char* interface,
             const char* method, GVariant* arguments) {
    return Variant(g_dbus_connection_call_sync(
        &bus, object.name.c_str(), object.path.c_str(), interface, method, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, busTimeoutMilliseconds, nullptr, nullptr));
}

Variant property(GDBusConnection& bus, const BusObject& object, const char* interface,
                 const char* name) {
    const auto answer = call(bus, object, "org.freedesktop.DBus.Properties", "Get",
                             g_variant_new("(ss)", interface, name));
    if (!answer) {
        return nullptr;
    }
    GVariant* value = nullptr;
    g_variant_get(answer.get(), "(v)", &value);
    return Variant(value);
}

bool isOnBus(GDBusConnection& bus, const std::string& name) {
    const auto answer = call(bus, busItself, busItself.name.c_str(), "NameHasOwner",
                             g_variant_new("(s)", name.c_str()));
    gboolean owned = FALSE;
    if (answer) {
        g_variant_get(answer.get(), "(b)", &owned);
    }
    return owned != FALSE;
}

} // namespace lumetry::desktop
