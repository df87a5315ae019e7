#pragma once

#include "platform/native/termination_signals.h"

namespace lumetry {

/// Waits for the Wayland compositor that has gone, then has this process begin anew, since Qt ends
/// with its connection. Returns when the compositor does not come back in time, or the process is
/// to end.
void beginAnewOnceBack(TerminationSignals& endRequests);

/// Whether this process has begun anew like that. To be asked once, before others see its
/// environment.
[[nodiscard]] bool hasBegunAnew();

} // namespace lumetry
