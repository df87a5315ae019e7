#pragma once

#include "audit/window_audit.h"
#include "base/geometry.h"
#include "platform/native/native_desktop.h"
#include "started_command.h"

#include <sys/types.h>

#include <optional>
#include <string>

namespace lumetry {

/// Which window is meant; nothing given: the one that keys go to.
struct TargetRequest {
    std::optional<std::string> title; ///< a part of it
    std::optional<pid_t> pid;
    std::optional<std::string> app; ///< bundle identifier
    std::optional<Point> point;     ///< accessibility space
};

/// @param problem why there is none, or not one only, and what to do, in one sentence
[[nodiscard]] std::optional<AuditTarget>
findTarget(const Platform& platform, const TargetRequest& request, std::string& problem);

/// Waits for the first window of a command, and for its elements.
/// @param problem why there is none
[[nodiscard]] std::optional<AuditTarget>
awaitWindow(NativeDesktop& desktop, StartedCommand& command, double seconds, std::string& problem);

/// Waits until the window's application tells of more than the window, and a page has loaded; where
/// that is not so from the beginning, until nothing has changed for the second time as well.
/// Returns in any case when the first time is over.
/// @param isNew whether the window has only just appeared
void awaitElements(NativeDesktop& desktop, ProbeState& state, const AuditTarget& target, bool isNew,
                   double seconds, double settleSeconds);

} // namespace lumetry
