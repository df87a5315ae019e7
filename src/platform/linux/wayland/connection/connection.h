#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/linux/wayland/connection/proxies.h"
#include "platform/run_loop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct wl_display;
struct wl_interface;

namespace lumetry::wayland {

/// Something that the compositor offers.
struct Global {
    std::uint32_t name = 0; ///< its number
    std::string interface;
    std::uint32_t version = 0;
};

/// The connection to the compositor. Once it is lost, requests do nothing and no event comes.
class Connection {
public:
    /// Waits for the compositor to say what it offers.
    /// @param name as in $WAYLAND_DISPLAY
    /// @param problem says what to do when the answer is empty
    [[nodiscard]] static std::unique_ptr<Connection> open(FileDescriptorWatcher& watcher,
                                                          RunLoop& runLoop, const std::string& name,
                                                          std::string& problem);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() = default;

    [[nodiscard]] wl_display* get() const { return display_.get(); }
    [[nodiscard]] RunLoop& runLoop() const { return runLoop_; }
    [[nodiscard]] bool isLost() const { return lost_; }

    [[nodiscard]] const std::vector<Global>& globals() const { return globals_; }
    /// @param version the newest that is understood
    template<class Proxy>
    [[nodiscard]] Owned<Proxy> bind(const Global& global, const wl_interface& interface,
                                    std::uint32_t version) const {
        return Owned<Proxy>(static_cast<Proxy*>(bindProxy(global, interface, version)));
    }
    /// The first of its kind; none where the compositor does not offer it.
    template<class Proxy>
    [[nodiscard]] Owned<Proxy> bindFirst(const wl_interface& interface,
                                         std::uint32_t version) const {
        const Global* const global = find(interface);
        return global ? bind<Proxy>(*global, interface, version) : nullptr;
    }
    [[nodiscard]] bool offers(const wl_interface& interface, std::uint32_t version) const {
        const Global* const global = find(interface);
        return global != nullptr && global->version >= version;
    }

    /// @{ Calls the handler when the compositor offers something new, or takes it back.
    [[nodiscard]] Token onOffered(std::function<void(const Global&)> handler) {
        return offeredHandlers_.add(std::move(handler));
    }
    [[nodiscard]] Token onWithdrawn(std::function<void(const Global&)> handler) {
        return withdrawnHandlers_.add(std::move(handler));
    }
    /// @}
    /// Calls the handler whenever all events that had arrived together have been handled.
    [[nodiscard]] Token onEventsHandled(std::function<void()> handler) {
        return batchHandlers_.add(std::move(handler));
    }

    /// Sends what is waiting to be sent.
    void flush();
    /// Waits until the compositor has answered all that was asked so far.
    void roundTrip();

    /// Called once, from the main queue, when the compositor has gone.
    std::function<void()> onLost;

private:
    struct Disconnect {
        void operator()(wl_display* display) const;
    };
    struct RegistryEvents;

    Connection(FileDescriptorWatcher& watcher, RunLoop& runLoop)
        : watcher_(watcher), runLoop_(runLoop) {}
    [[nodiscard]] bool connect(const std::string& name);
    [[nodiscard]] const Global* find(const wl_interface& interface) const;
    [[nodiscard]] void* bindProxy(const Global& global, const wl_interface& interface,
                                  std::uint32_t version) const;
    void readEvents();
    void lose();
    void tellLoss();

    FileDescriptorWatcher& watcher_;
    RunLoop& runLoop_;
    std::unique_ptr<wl_display, Disconnect> display_;
    Owned<wl_registry> registry_;
    std::vector<Global> globals_;
    HandlerList<const Global&> offeredHandlers_;
    HandlerList<const Global&> withdrawnHandlers_;
    HandlerList<> batchHandlers_;
    bool flushScheduled_ = false;
    bool lost_ = false;
    Lifetime lifetime_;
    Token readable_;
};

} // namespace lumetry::wayland
