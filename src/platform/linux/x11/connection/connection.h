#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/linux/x11/connection/atoms.h"
#include "platform/linux/x11/connection/reply.h"
#include "platform/run_loop.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// What the X server can do beyond its core protocol.
struct Extensions {
    bool resource = false;          ///< X-Resource 1.2: a client's process
    bool monitors = false;          ///< RandR 1.5
    bool composite = false;         ///< Composite 0.4: windows' own pixels
    bool screenSaver = false;       ///< MIT-SCREEN-SAVER
    bool render = false;            ///< RENDER 0.10: transformed and padded pictures
    bool sharedMemory = false;      ///< MIT-SHM 1.2: memory handed over as a file descriptor
    std::uint8_t inputOpcode = 0;   ///< of XInput events
    std::uint8_t shapeEvent = 0;    ///< first event of SHAPE
    std::uint8_t fixesEvent = 0;    ///< first event of XFIXES
    std::uint8_t monitorsEvent = 0; ///< first event of RandR
    std::uint8_t saverEvent = 0;    ///< first event of MIT-SCREEN-SAVER
};

/// What to say where the windows of a Wayland session are what there is.
inline constexpr std::string_view waylandProblem =
    "This is a Wayland session, in which Lumetry cannot look at other applications: log in to an "
    "X11 session instead.";

/// The connection to the X server. Once it is lost, requests do nothing and replies are empty.
class Connection {
public:
    /// @param display as in $DISPLAY
    /// @param problem says what to do when the answer is empty
    [[nodiscard]] static std::unique_ptr<Connection> open(FileDescriptorWatcher& watcher,
                                                          RunLoop& runLoop,
                                                          const std::string& display,
                                                          std::string& problem);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() = default;

    [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
    [[nodiscard]] RunLoop& runLoop() const { return runLoop_; }
    [[nodiscard]] FileDescriptorWatcher& watcher() const { return watcher_; }
    /// As in $DISPLAY.
    [[nodiscard]] const std::string& display() const { return display_; }
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] const Extensions& extensions() const { return extensions_; }
    [[nodiscard]] xcb_atom_t atom(Atom name) const {
        return atoms_[static_cast<std::size_t>(name)];
    }
    /// The server's numbers of other names; none for a name where it does not answer.
    [[nodiscard]] std::vector<xcb_atom_t> intern(std::span<const std::string_view> names);
    /// Whether this very connection has made the window.
    [[nodiscard]] bool isOwnResource(std::uint32_t id) const;
    /// The same for the windows and so on that one connection to the server has made; 0 for those
    /// of the server itself.
    [[nodiscard]] std::uint32_t makerOf(std::uint32_t id) const;
    /// In bytes, the request's own fields included.
    [[nodiscard]] std::size_t maximumRequestSize() const { return maximumRequestSize_; }
    [[nodiscard]] bool isLost() const;

    /// Waits for the reply to a request. Send all requests that do not depend on each other before
    /// the first of these, so that one wait serves them all.
    /// @param function the request's reply function, which names the type
    template<class T, class Cookie>
    [[nodiscard]] Reply<T> reply(T* (*function)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                                 Cookie cookie) {
        static_cast<void>(function);
        return Reply<T>(static_cast<T*>(waitForReply(cookie.sequence)));
    }
    /// Whether a request without a reply, sent as one to be checked, has failed. Does not wait when
    /// something asked for later has been answered.
    [[nodiscard]] bool failed(xcb_void_cookie_t cookie);
    /// How often the program has had to wait for the server.
    [[nodiscard]] std::size_t roundTrips() const { return roundTrips_; }
    /// Sends what is waiting to be sent.
    void flush();

    /// Calls the handler for every event.
    [[nodiscard]] Token onEvent(std::function<void(const xcb_generic_event_t&)> handler) {
        return eventHandlers_.add(std::move(handler));
    }
    /// Calls the handler whenever all events that had arrived together have been handled.
    [[nodiscard]] Token onEventsHandled(std::function<void()> handler) {
        return batchHandlers_.add(std::move(handler));
    }
    /// Receives these events of the root window for as long as the token lives. Several wishes add
    /// up.
    [[nodiscard]] Token selectOnRoot(std::uint32_t eventMask);

    /// Called once, from the main queue, when the server has gone.
    std::function<void()> onLost;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    Connection(FileDescriptorWatcher& watcher, RunLoop& runLoop, std::string display)
        : watcher_(watcher), runLoop_(runLoop), display_(std::move(display)) {}
    [[nodiscard]] bool connect(std::string& problem);
    /// @return what the program cannot do without and the server does not have; else empty
    [[nodiscard]] std::string queryExtensions();
    [[nodiscard]] std::string queryNeededExtensions();
    void queryWelcomeExtensions();
    void queryCaptureExtensions();
    /// @return why this server's screen cannot be looked at; else empty
    [[nodiscard]] std::string screenProblem();
    [[nodiscard]] bool isWaylandsServer();
    [[nodiscard]] void* waitForReply(unsigned sequence);
    void keepQueuedEvents();
    void readEvents();
    void dispatch();
    void applyRootWishes();
    void lose();

    FileDescriptorWatcher& watcher_;
    RunLoop& runLoop_;
    std::string display_;
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    int screenNumber_ = 0;
    const xcb_screen_t* screen_ = nullptr;
    Extensions extensions_;
    std::vector<xcb_atom_t> atoms_; ///< in the order of Atom
    std::size_t maximumRequestSize_ = 0;
    std::size_t roundTrips_ = 0;

    HandlerList<const xcb_generic_event_t&> eventHandlers_;
    HandlerList<> batchHandlers_;
    std::vector<Reply<xcb_generic_event_t>> pending_;
    bool dispatching_ = false;
    bool dispatchScheduled_ = false;
    bool lossReported_ = false;

    std::multiset<std::uint32_t> rootWishes_; ///< masks of events

    Lifetime lifetime_;
    Token readable_;
};

} // namespace lumetry::x11
