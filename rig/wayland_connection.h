#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct wl_display;
struct wl_interface;
struct wl_registry;

namespace lumetry::desktop {

/// A connection of the rig's own to a Wayland compositor.
class WaylandConnection {
public:
    /// @param socket the path of the compositor's socket
    /// Throws std::runtime_error when nobody answers there.
    explicit WaylandConnection(const std::string& socket);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    [[nodiscard]] wl_display* display() const { return display_; }
    /// The compositor's objects of a kind, in its order, each a proxy of that kind.
    /// @param version the newest that is understood
    template<class Proxy>
    [[nodiscard]] std::vector<Proxy*> bindAll(const wl_interface& interface,
                                              std::uint32_t version) const {
        std::vector<Proxy*> proxies;
        for (void* const proxy : bind(interface, version)) {
            proxies.push_back(static_cast<Proxy*>(proxy));
        }
        return proxies;
    }
    /// The only one of its kind; throws std::runtime_error where there is none, or this program may
    /// not have it.
    template<class Proxy>
    [[nodiscard]] Proxy* bindOne(const wl_interface& interface, std::uint32_t version) const {
        return static_cast<Proxy*>(requireOne(interface, version));
    }
    /// Returns when the compositor has carried out everything that was asked so far, and its events
    /// have been heard. Throws std::runtime_error when it is gone.
    void sync() const;

private:
    struct Global {
        std::uint32_t name;
        std::string interface;
        std::uint32_t version;
    };
    struct RegistryEvents;

    [[nodiscard]] std::vector<void*> bind(const wl_interface& interface,
                                          std::uint32_t version) const;
    [[nodiscard]] void* requireOne(const wl_interface& interface, std::uint32_t version) const;

    wl_display* display_;
    wl_registry* registry_ = nullptr;
    std::vector<Global> globals_;
};

} // namespace lumetry::desktop
