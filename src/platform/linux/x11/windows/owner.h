#pragma once

#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/connection/property.h"

#include <xcb/res.h>

#include <sys/types.h>

#include <optional>

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

} // namespace lumetry::x11
