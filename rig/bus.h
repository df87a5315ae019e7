#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

namespace lumetry::desktop {

struct UnrefVariant {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using Variant = std::unique_ptr<GVariant, UnrefVariant>;

/// Whether there is a value of that type, given as D-Bus writes types.
[[nodiscard]] inline bool isOfType(const Variant& variant, const char* type) {
    return variant && g_variant_is_of_type(variant.get(), G_VARIANT_TYPE(type)) != FALSE;
}

/// How long one answer may take.
inline constexpr int busTimeoutMilliseconds = 10'000;

/// A connection of this program's own to a message bus. Throws std::runtime_error when the bus does
/// not answer.
[[nodiscard]] std::shared_ptr<GDBusConnection> connectToBus(const std::string& address);

struct BusObject {
    std::string name;
    std::string path;
};

/// The bus's own object.
inline const BusObject busItself = {"org.freedesktop.DBus", "/org/freedesktop/DBus"};

/// Calls a method and returns its answer; empty when it fails.
/// @param arguments a tuple, floating or not; null for none
[[nodiscard]] Variant call(GDBusConnection& bus, const BusObject& object, const char* interface,
                           const char* method, GVariant* arguments = nullptr);
/// The value of a property; empty when it cannot be read.
[[nodiscard]] Variant property(GDBusConnection& bus, const BusObject& object, const char* interface,
                               const char* name);

/// Whether somebody has that name.
[[nodiscard]] bool isOnBus(GDBusConnection& bus, const std::string& name);

} // namespace lumetry::desktop
