#pragma once

#include "platform/native/termination_signals.h"

#include <optional>
#include <string>

namespace lumetry {

/// Waits for the Wayland compositor that has gone, then has this process begin anew, since Qt ends
/// with its connection. Returns when the compositor does not come back in time, when the connection
/// breaks again and again, or the process is to end.
void beginAnewOnceBack(TerminationSignals& endRequests);

/// When this process has begun anew lately, with one more time. Absent when that is too often.
/// @param beginnings seconds, separated by commas
[[nodiscard]] std::optional<std::string> addedBeginning(const std::string& beginnings, long now);

/// Whether this process has begun anew like that. To be asked once, before others see its
/// environment.
[[nodiscard]] bool hasBegunAnew();

} // namespace lumetry
