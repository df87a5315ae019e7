#include "rig/notifier_tray.h"

#include "rig/processes/wait_until.h"

#include <algorithm>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string_view>

namespace lumetry::desktop {
namespace {

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
constexpr const char* itemInterface = "org.kde.StatusNotifierItem";
constexpr const char* menuInterface = "com.canonical.dbusmenu";

TrayRow rowFrom(GVariant* node) {
    TrayRow row;
    GVariant* properties = nullptr;
    g_variant_get(node, "(i@a{sv}av)", &row.id, &properties, nullptr);
    const Variant owned(properties);
    const char* label = nullptr;
    if (g_variant_lookup(properties, "label", "&s", &label) != FALSE) {
        row.label = label;
    }
    gboolean enabled = TRUE;
    g_variant_lookup(properties, "enabled", "b", &enabled);
    row.enabled = enabled != FALSE;
    return row;
}

} // namespace

/// Who has registered: the bus tells it on a thread of its own.
struct NotifierTray::Taken {
    std::mutex mutex;
    std::string item;

    std::string get() {
        const std::lock_guard lock(mutex);
        return item;
    }
    static GDBusMessage* take(GDBusConnection* bus, GDBusMessage* message, gboolean incoming,
                              gpointer data) {
        const char* member = g_dbus_message_get_member(message);
        if (incoming == FALSE || member == nullptr ||
            std::string_view(member) != "RegisterStatusNotifierItem") {
            return message;
        }
        {
            auto& taken = *static_cast<Taken*>(data);
            const std::lock_guard lock(taken.mutex);
            const char* service = nullptr;
            GVariant* const body = g_dbus_message_get_body(message);
            if (body != nullptr && g_variant_is_of_type(body, G_VARIANT_TYPE("(s)")) != FALSE) {
                g_variant_get(body, "(&s)", &service);
                taken.item = service;
            }
        }
        GDBusMessage* const reply = g_dbus_message_new_method_reply(message);
        g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                       nullptr);
        g_object_unref(reply);
        g_object_unref(message);
        return nullptr;
    }
};

NotifierTray::NotifierTray(const std::string& sessionBus)
    : taken_(std::make_unique<Taken>()), bus_(connectToBus(sessionBus)),
      filter_(g_dbus_connection_add_filter(bus_.get(), Taken::take, taken_.get(), nullptr)) {
    if (!call(*bus_, busItself, busItself.name.c_str(), "RequestName",
              g_variant_new("(su)", watcher, 0U))) {
        throw std::runtime_error("the session's tray cannot be taken over");
    }
}

NotifierTray::~NotifierTray() {
    g_dbus_connection_remove_filter(bus_.get(), filter_);
}

void NotifierTray::waitForItem() {
    requireUntil("an item in the tray", [&] { return !taken_->get().empty(); });
}

Variant NotifierTray::itemProperty(const char* name) const {
    return property(*bus_, {taken_->get(), "/StatusNotifierItem"}, itemInterface, name);
}

std::uint32_t NotifierTray::itemColor() const {
    const auto pictures = itemProperty("IconPixmap");
    if (!isOfType(pictures, "a(iiay)")) {
        return 0;
    }
    std::uint32_t strongest = 0;
    for (gsize place = 0; place < g_variant_n_children(pictures.get()); ++place) {
        const Variant picture(g_variant_get_child_value(pictures.get(), place));
        gint32 width = 0;
        GVariant* bytes = nullptr;
        g_variant_get(picture.get(), "(ii@ay)", &width, nullptr, &bytes);
        const Variant owned(bytes);
        gsize size = 0;
        const auto* const first =
            static_cast<const std::uint8_t*>(g_variant_get_fixed_array(bytes, &size, 1));
        constexpr int usualSide = 22;
        constexpr gsize channels = 4;
        const std::span all(first, size);
        for (gsize at = 0; width == usualSide && at + channels <= size; at += channels) {
            const std::uint32_t pixel = (static_cast<std::uint32_t>(all[at]) << 24U) |
                                        (static_cast<std::uint32_t>(all[at + 1]) << 16U) |
                                        (static_cast<std::uint32_t>(all[at + 2]) << 8U) |
                                        all[at + 3];
            strongest = pixel >> 24U > strongest >> 24U ? pixel : strongest;
        }
    }
    return strongest;
}

BusObject NotifierTray::menu() const {
    const auto path = itemProperty("Menu");
    return {taken_->get(),
            isOfType(path, "o") ? g_variant_get_string(path.get(), nullptr) : "/none"};
}

std::vector<TrayRow> NotifierTray::rows() const {
    std::vector<TrayRow> rows;
    const auto answer =
        call(*bus_, menu(), menuInterface, "GetLayout", g_variant_new("(iias)", 0, -1, nullptr));
    if (!isOfType(answer, "(u(ia{sv}av))")) {
        return rows;
    }
    GVariantIter* children = nullptr;
    g_variant_get(answer.get(), "(u(ia{sv}av))", nullptr, nullptr, nullptr, &children);
    GVariant* child = nullptr;
    while (g_variant_iter_next(children, "v", &child) != FALSE) {
        const Variant owned(child);
        rows.push_back(rowFrom(child));
    }
    g_variant_iter_free(children);
    return rows;
}

void NotifierTray::choose(const std::string& label) const {
    const auto all = rows();
    const auto row = std::ranges::find(all, label, &TrayRow::label);
    if (row == all.end()) {
        throw std::runtime_error("the tray's menu has no row \"" + label + '"');
    }
    (void)call(*bus_, menu(), menuInterface, "Event",
               g_variant_new("(isvu)", row->id, "clicked", g_variant_new_int32(0), 0U));
}

} // namespace lumetry::desktop
