#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/hit_test/point_queries.h"
#include "platform/linux/atspi/tree/popups.h"
#include "platform/linux/atspi/tree/top_levels.h"

#include <optional>

namespace lumetry::atspi {

struct Descent {
    Outcome outcome = Outcome::silent;     ///< of asking the window's object
    std::optional<ObjectReference> object; ///< the innermost one at the point
};

/// From the object that stands for a window down to the innermost one at the point, which is that
/// object itself where nothing in it answers.
[[nodiscard]] Descent descend(PointQueries& queries, Popovers& popovers, const TopLevel& topLevel);

} // namespace lumetry::atspi
