#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/property.h"
#include "platform/linux/x11/windows/record.h"

#include <xcb/res.h>

#include <sys/types.h>

#include <optional>
#include <span>
#include <vector>

namespace lumetry::x11 {

/// A question for the process behind a window that is on its way.
struct OwnerRequest {
    std::optional<xcb_res_query_client_ids_cookie_t> clientIds;
    PropertyRequest pid;
    PropertyRequest machine;
};

[[nodiscard]] OwnerRequest requestOwner(Connection& connection, xcb_window_t window);

/// The process that the server knows to be at the other end of the window's connection, else the
/// one that the window names as running on this machine. Absent when neither is to be had.
[[nodiscard]] std::optional<pid_t> takeOwner(Connection& connection, const OwnerRequest& request);

/// What the root window says of all windows.
struct RootFacts {
    std::vector<xcb_window_t> children; ///< the lowest first
    bool windowManagerRuns = false;
    std::optional<xcb_window_t> windowManager; ///< a window of its own, where it names one
    std::optional<std::uint32_t> currentDesktop;
    std::optional<Rect> workArea; ///< root coordinates; of the current desktop
};

/// Reads windows from the server. Each function asks for all it has been given before it waits. A
/// window that has vanished keeps what was known of it and is not viewable.
class WindowReader {
public:
    explicit WindowReader(Connection& connection);

    /// Absent when the tree cannot be read.
    [[nodiscard]] std::optional<RootFacts> readRoot();
    /// Attributes, place and input shape; listens for changes of the window's properties.
    void readBasics(std::span<WindowRecord*> windows);
    /// Looks for the window that a window manager looks after, in or below each, and listens for
    /// changes of those it finds.
    void findClients(std::span<WindowRecord*> windows);
    /// Owner and properties, and the client's place within its frame.
    void readDetails(std::span<WindowRecord*> windows);
    /// Listens for changes of a window's properties.
    void watchProperties(xcb_window_t window);
    /// Ends listening for changes of the window and of its client.
    void forget(const WindowRecord& window);

private:
    void select(xcb_window_t window, std::uint32_t eventMask);

    Connection& connection_;
};

} // namespace lumetry::x11
