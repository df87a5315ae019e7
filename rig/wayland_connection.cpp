#include "rig/wayland_connection.h"

#include <wayland-client.h>

#include <algorithm>
#include <stdexcept>

namespace lumetry::desktop {

struct WaylandConnection::RegistryEvents {
    static void added(void* data, wl_registry* /*registry*/, std::uint32_t name,
                      const char* interface, std::uint32_t version) {
        static_cast<WaylandConnection*>(data)->globals_.push_back({name, interface, version});
    }
    static void removed(void* data, wl_registry* /*registry*/, std::uint32_t name) {
        std::erase_if(static_cast<WaylandConnection*>(data)->globals_,
                      [name](const Global& global) { return global.name == name; });
    }
};

WaylandConnection::WaylandConnection(const std::string& socket)
    : display_(wl_display_connect(socket.c_str())) {
    if (!display_) {
        throw std::runtime_error("no Wayland compositor answers at " + socket);
    }
    static constexpr wl_registry_listener listener = {RegistryEvents::added,
                                                      RegistryEvents::removed};
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &listener, this);
    sync();
}

WaylandConnection::~WaylandConnection() {
    wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

std::vector<void*> WaylandConnection::bind(const wl_interface& interface,
                                           std::uint32_t version) const {
    std::vector<void*> proxies;
    for (const Global& global : globals_) {
        if (global.interface == interface.name) {
            proxies.push_back(wl_registry_bind(registry_, global.name, &interface,
                                               std::min(version, global.version)));
        }
    }
    return proxies;
}

void* WaylandConnection::requireOne(const wl_interface& interface, std::uint32_t version) const {
    const auto proxies = bind(interface, version);
    if (proxies.empty()) {
        throw std::runtime_error(std::string("the compositor does not offer ") + interface.name);
    }
    return proxies.front();
}

void WaylandConnection::sync() const {
    if (wl_display_roundtrip(display_) < 0) {
        throw std::runtime_error("the Wayland compositor has gone, or refused something");
    }
}

} // namespace lumetry::desktop
