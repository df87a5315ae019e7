#pragma once

#include "base/token.h"
#include "platform/linux/bus/connection.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::atspi {

/// Whether an address is that of a socket on this machine. Others that libdbus knows start programs
/// or leave the machine; what an application says is not to do either.
[[nodiscard]] bool isLocalSocket(const std::string& address);

/// Connections straight to applications, past the bus: where a toolkit offers one, an answer takes
/// half as long. Applications are told by the unique names of their connections to the bus.
class DirectConnections {
public:
    /// Counts a request to an application.
    /// @return whether it is to be asked for its address now, being asked often; once
    [[nodiscard]] bool isWorthAsking(std::string_view application);
    /// Begins to connect; nothing happens where that is not to be had.
    /// @param onReadable called from the main loop when there is something to take in
    void open(const std::string& application, const std::string& address,
              FileDescriptorWatcher& watcher, const std::function<void()>& onReadable);
    /// Null where the bus has to do: there is none, or it is not ready.
    [[nodiscard]] DBusConnection* to(std::string_view application) const;

    /// An open connection, ready or not.
    struct Link {
        std::string application;
        DBusConnection* connection;
    };
    [[nodiscard]] std::vector<Link> links() const;
    /// Ends one that is lost. The application is not connected to again.
    void close(std::string_view application);
    /// Ends all, and forgets the applications.
    void clear() { applications_.clear(); }

private:
    struct Application {
        int requests = 0;
        BusConnection connection;
        Token watch;
    };

    std::map<std::string, Application, std::less<>> applications_;
};

} // namespace lumetry::atspi
