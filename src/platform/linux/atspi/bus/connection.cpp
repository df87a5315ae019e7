#include "platform/linux/atspi/bus/connection.h"

#include "platform/linux/system/environment.h"

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

} // namespace

bool isConnected(const BusConnection& connection) {
    return connection && dbus_connection_get_is_connected(connection.get()) != FALSE;
}

bool SessionBus::connect() {
    if (isConnected(connection_)) {
        return true;
    }
    connection_ = openBus(sessionBusAddress());
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

std::string SessionBus::accessibilityBusAddress() {
    return textOf(ask(methodCall(accessibilityService(), "org.a11y.Bus", "GetAddress")))
        .value_or("");
}

BusConnection openAccessibilityBus(SessionBus& session) {
    const std::string given = environmentText("AT_SPI_BUS_ADDRESS");
    return openBus(given.empty() ? session.accessibilityBusAddress() : given);
}

} // namespace lumetry::atspi
