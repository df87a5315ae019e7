#pragma once

#include "base/token.h"
#include "platform/linux/x11/connection/connection.h"

#include <xcb/xcb.h>

#include <functional>
#include <memory>

namespace lumetry::x11 {

/// Tells when other clients may have let go of keys they had grabbed: they have said so, or they
/// have ended. The server has no event for that; what it records for debuggers does tell. It
/// records for a connection of its own, and nothing else than this is sent over it. On a server
/// that does not record, nothing is told.
class FreedGrabs {
public:
    /// @param handler also called when the recording has begun, for what happened before. It may
    /// destroy this object
    FreedGrabs(Connection& connection, std::function<void()> handler);
    FreedGrabs(const FreedGrabs&) = delete;
    FreedGrabs& operator=(const FreedGrabs&) = delete;
    ~FreedGrabs();

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    void record();
    void read();

    Connection& connection_;
    std::function<void()> handler_;
    std::unique_ptr<xcb_connection_t, Disconnect> recording_;
    std::uint32_t context_ = 0; ///< the server's name of what is recorded
    unsigned request_ = 0;      ///< that all replies answer
    Token readable_;
};

} // namespace lumetry::x11
