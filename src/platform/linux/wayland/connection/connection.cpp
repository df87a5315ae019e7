#include "platform/linux/wayland/connection/connection.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace lumetry::wayland {

void Connection::Disconnect::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}

struct Connection::RegistryEvents {
    static void offered(void* data, wl_registry* /*registry*/, std::uint32_t name,
                        const char* interface, std::uint32_t version) {
        auto& connection = *static_cast<Connection*>(data);
        const Global global = {name, interface, version};
        connection.globals_.push_back(global);
        connection.offeredHandlers_.call(global);
    }
    static void withdrawn(void* data, wl_registry* /*registry*/, std::uint32_t name) {
        auto& connection = *static_cast<Connection*>(data);
        const auto found = std::ranges::find(connection.globals_, name, &Global::name);
        if (found != connection.globals_.end()) {
            const Global global = *found;
            connection.globals_.erase(found);
            connection.withdrawnHandlers_.call(global);
        }
    }
};

std::unique_ptr<Connection> Connection::open(FileDescriptorWatcher& watcher, RunLoop& runLoop,
                                             const std::string& name, std::string& problem) {
    std::unique_ptr<Connection> connection(new Connection(watcher, runLoop));
    if (!connection->connect(name)) {
        problem = "The Wayland compositor " + name +
                  " does not answer: start Lumetry inside a desktop session.";
        return nullptr;
    }
    return connection;
}

bool Connection::connect(const std::string& name) {
    display_.reset(wl_display_connect(name.c_str()));
    if (!display_) {
        return false;
    }
    static constexpr wl_registry_listener listener = {RegistryEvents::offered,
                                                      RegistryEvents::withdrawn};
    registry_.reset(wl_display_get_registry(display_.get()));
    wl_registry_add_listener(registry_.get(), &listener, this);
    roundTrip();
    if (lost_) {
        return false;
    }
    readable_ = watcher_.watchReadable(wl_display_get_fd(display_.get()), [this] { readEvents(); });
    return true;
}

const Global* Connection::find(const wl_interface& interface) const {
    const auto found = std::ranges::find(globals_, interface.name, &Global::interface);
    return found == globals_.end() ? nullptr : &*found;
}

void* Connection::bindProxy(const Global& global, const wl_interface& interface,
                            std::uint32_t version) const {
    return wl_registry_bind(registry_.get(), global.name, &interface,
                            std::min(version, global.version));
}

void Connection::flush() {
    if (lost_ || wl_display_flush(display_.get()) >= 0) {
        return;
    }
    if (errno != EAGAIN) {
        lose();
    } else if (!flushScheduled_) {
        // The compositor is slow to read.
        constexpr double pause = 0.02;
        flushScheduled_ = true;
        runLoop_.after(pause, lifetime_.guard([this] {
            flushScheduled_ = false;
            flush();
        }));
    }
}

void Connection::roundTrip() {
    if (!lost_ && wl_display_roundtrip(display_.get()) < 0) {
        lose();
    }
}

void Connection::readEvents() {
    if (lost_) {
        return;
    }
    auto* const display = display_.get();
    bool healthy = true;
    while (healthy && wl_display_prepare_read(display) != 0) {
        healthy = wl_display_dispatch_pending(display) >= 0;
    }
    healthy = healthy && wl_display_read_events(display) >= 0 &&
              wl_display_dispatch_pending(display) >= 0;
    if (!healthy) {
        lose();
        tellLoss();
        return;
    }
    batchHandlers_.call();
    flush();
}

void Connection::lose() {
    if (lost_) {
        return;
    }
    lost_ = true;
    readable_.reset();
    runLoop_.async(lifetime_.guard([this] { tellLoss(); }));
}

void Connection::tellLoss() {
    if (const auto handler = std::exchange(onLost, nullptr)) {
        handler();
    }
}

} // namespace lumetry::wayland
