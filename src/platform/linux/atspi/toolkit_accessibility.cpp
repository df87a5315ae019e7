#include "platform/linux/atspi/toolkit_accessibility.h"

#include <gio/gio.h>

#include <memory>

namespace lumetry::atspi {
namespace {

constexpr const char* schemaName = "org.gnome.desktop.interface";
constexpr const char* keyName = "toolkit-accessibility";

template<auto release>
struct Releaser {
    template<class T>
    void operator()(T* object) const {
        release(object);
    }
};

using Schema = std::unique_ptr<GSettingsSchema, Releaser<g_settings_schema_unref>>;
using Settings = std::unique_ptr<GSettings, Releaser<g_object_unref>>;

} // namespace

void keepToolkitAccessibility() {
    // GLib ends the program when it is asked for a schema or key that is not installed.
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    const Schema schema(source ? g_settings_schema_source_lookup(source, schemaName, TRUE)
                               : nullptr);
    if (!schema || g_settings_schema_has_key(schema.get(), keyName) == FALSE) {
        return;
    }
    const Settings settings(g_settings_new_full(schema.get(), nullptr, nullptr));
    g_settings_set_boolean(settings.get(), keyName, TRUE);
    g_settings_sync();
}

} // namespace lumetry::atspi
