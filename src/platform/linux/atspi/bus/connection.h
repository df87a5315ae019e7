#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/bus/connection.h"

#include <string>

namespace lumetry::atspi {

/// False for null, too.
[[nodiscard]] bool isConnected(const BusConnection& connection);

/// The session bus, and what it says of accessibility. It is connected when it is first needed.
class SessionBus {
public:
    enum class Accessibility {
        noSessionBus, ///< there is no session bus, or it cannot be reached
        noService,    ///< nothing on it looks after the accessibility bus
        disabled,     ///< no assistive technology is announced: applications keep their trees back
        enabled,
    };

    [[nodiscard]] Accessibility accessibility();
    /// Announces an assistive technology to all applications, or withdraws it; whether that worked.
    bool setAccessibilityEnabled(bool enabled);
    /// Where the accessibility bus is; empty when nobody says.
    [[nodiscard]] std::string accessibilityBusAddress();

private:
    [[nodiscard]] bool connect();
    [[nodiscard]] Reply ask(Message request);

    BusConnection connection_;
};

/// Connects to the accessibility bus; null when there is none.
[[nodiscard]] BusConnection openAccessibilityBus(SessionBus& session);

} // namespace lumetry::atspi
