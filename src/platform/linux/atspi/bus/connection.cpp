#include "platform/linux/atspi/bus/connection.h"

#include "platform/linux/atspi/bus/requests.h"
#include "platform/linux/system/bus_addresses.h"

#include <atspi/atspi.h>

#include <cstdlib>
#include <string>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr int sessionTimeoutMilliseconds = 1000;
constexpr const char* statusInterface = "org.a11y.Status";
constexpr const char* enabledProperty = "IsEnabled";

const ObjectReference& accessibilityService() {
    static const ObjectReference service{"org.a11y.Bus", "/org/a11y/bus"};
    return service;
}

/// libatspi complains on standard error about a bus that is not there; here that is no fault.
class QuietLibrary {
public:
    QuietLibrary() {
        handler_ = g_log_set_handler(
            domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE),
            [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {}, nullptr);
    }
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
    ~QuietLibrary() { g_log_remove_handler(domain, handler_); }

private:
    static constexpr const char* domain = "dbind";
    guint handler_ = 0;
};

} // namespace

bool isConnected(const Connection& connection) {
    return connection && dbus_connection_get_is_connected(connection.get()) != FALSE;
}

bool SessionBus::connect() {
    if (isConnected(connection_)) {
        return true;
    }
    const std::string address = sessionBusAddress();
    connection_.reset(address.empty() ? nullptr
                                      : dbus_connection_open_private(address.c_str(), nullptr));
    if (connection_ && dbus_bus_register(connection_.get(), nullptr) == FALSE) {
        connection_.reset();
    }
    if (connection_) {
        dbus_connection_set_exit_on_disconnect(connection_.get(), FALSE);
    }
    return connection_ != nullptr;
}

Reply SessionBus::ask(Message request) {
    if (!request || !connect()) {
        return {};
    }
    Message answer(dbus_connection_send_with_reply_and_block(connection_.get(), request.get(),
                                                             sessionTimeoutMilliseconds, nullptr));
    // Nobody reads this connection between two questions.
    while (const Message dropped{dbus_connection_pop_message(connection_.get())}) {
    }
    return answer ? Reply{Outcome::answered, std::move(answer)} : Reply{Outcome::refused, nullptr};
}

SessionBus::Accessibility SessionBus::accessibility() {
    if (!connect()) {
        return Accessibility::noSessionBus;
    }
    const auto enabled =
        booleanOf(ask(getProperty(accessibilityService(), statusInterface, enabledProperty)));
    if (!enabled) {
        return Accessibility::noService;
    }
    return *enabled ? Accessibility::enabled : Accessibility::disabled;
}

bool SessionBus::setAccessibilityEnabled(bool enabled) {
    return ask(setProperty(accessibilityService(), statusInterface, enabledProperty, enabled))
               .outcome == Outcome::answered;
}

bool SessionBus::knowsAccessibilityBus() {
    const auto address =
        textOf(ask(methodCall(accessibilityService(), "org.a11y.Bus", "GetAddress")));
    return address && !address->empty();
}

Connection openAccessibilityBus(SessionBus& session) {
    // The library asks the same of the session bus, but would wait for half a minute.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment meanwhile
    const char* const given = std::getenv("AT_SPI_BUS_ADDRESS");
    if ((given == nullptr || *given == '\0') && !session.knowsAccessibilityBus()) {
        return nullptr;
    }
    const QuietLibrary quiet;
    Connection connection(atspi_get_a11y_bus());
    if (connection) {
        dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    }
    return connection;
}

} // namespace lumetry::atspi
