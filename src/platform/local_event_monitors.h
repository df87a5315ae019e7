#pragma once

#include "base/token.h"
#include "platform/input.h"

#include <functional>

namespace lumetry {

/// What a local monitor makes of an event.
enum class EventFate {
    passOn,  ///< its window gets it
    swallow, ///< it ends here
};

/// Sees the input that is addressed to the program's own windows before they do.
class LocalEventMonitors {
public:
    using Handler = std::function<EventFate(const Event&)>;

    LocalEventMonitors() = default;
    LocalEventMonitors(const LocalEventMonitors&) = delete;
    LocalEventMonitors& operator=(const LocalEventMonitors&) = delete;
    virtual ~LocalEventMonitors() = default;

    /// Calls the handler on the main thread for every event of the mask, the latest monitor first,
    /// until one swallows it (NSEvent.addLocalMonitorForEvents). It lasts as long as the token.
    [[nodiscard]] virtual Token addLocalMonitorForEvents(EventMask mask, Handler handler) = 0;
};

} // namespace lumetry
