#include "platform/linux/atspi/bus/direct_connections.h"

#include <cstring>

namespace lumetry::atspi {
namespace {

/// As many as the readouts of two or three elements take.
constexpr int requestsToBeWorthIt = 64;

struct FreeEntries {
    void operator()(DBusAddressEntry** entries) const { dbus_address_entries_free(entries); }
};

} // namespace

bool isLocalSocket(const std::string& address) {
    DBusAddressEntry** parsed = nullptr;
    int count = 0;
    if (dbus_parse_address(address.c_str(), &parsed, &count, nullptr) == FALSE) {
        return false;
    }
    const std::unique_ptr<DBusAddressEntry*, FreeEntries> entries(parsed);
    return count == 1 && std::strcmp(dbus_address_entry_get_method(parsed[0]), "unix") == 0;
}

bool DirectConnections::isWorthAsking(std::string_view application) {
    // Names without a colon are those of services, not of applications.
    if (!application.starts_with(':')) {
        return false;
    }
    auto known = applications_.find(application);
    if (known == applications_.end()) {
        known = applications_.try_emplace(std::string(application)).first;
    }
    int& requests = known->second.requests;
    return requests < requestsToBeWorthIt && ++requests == requestsToBeWorthIt;
}

void DirectConnections::open(const std::string& application, const std::string& address,
                             FileDescriptorWatcher& watcher,
                             const std::function<void()>& onReadable) {
    if (!isLocalSocket(address)) {
        return;
    }
    BusConnection connection(dbus_connection_open_private(address.c_str(), nullptr));
    int descriptor = -1;
    if (!connection || dbus_connection_get_unix_fd(connection.get(), &descriptor) == FALSE) {
        return;
    }
    dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    // The first words of who is there; the rest is said as answers come.
    dbus_connection_read_write(connection.get(), 0);
    Application& entry = applications_[application];
    entry.watch = watcher.watchReadable(descriptor, onReadable);
    entry.connection = std::move(connection);
}

DBusConnection* DirectConnections::to(std::string_view application) const {
    const auto known = applications_.find(application);
    DBusConnection* const connection =
        known == applications_.end() ? nullptr : known->second.connection.get();
    const bool isReady = connection != nullptr &&
                         dbus_connection_get_is_authenticated(connection) != FALSE &&
                         dbus_connection_get_is_connected(connection) != FALSE;
    return isReady ? connection : nullptr;
}

std::vector<DirectConnections::Link> DirectConnections::links() const {
    std::vector<Link> open;
    for (const auto& [name, application] : applications_) {
        if (application.connection) {
            open.push_back({name, application.connection.get()});
        }
    }
    return open;
}

void DirectConnections::close(std::string_view application) {
    const auto known = applications_.find(application);
    if (known != applications_.end()) {
        known->second.watch.reset();
        known->second.connection.reset();
    }
}

} // namespace lumetry::atspi
