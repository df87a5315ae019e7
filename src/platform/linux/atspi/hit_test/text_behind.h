#pragma once

#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/object_reference.h"
#include "platform/linux/atspi/tree/reply_cache.h"

namespace lumetry::atspi {

/// Qt shows a text that may be longer than its place through a widget in front of it: the text
/// behind such a widget; any other object itself.
[[nodiscard]] ObjectReference textBehind(ReplyCache& cache, ObjectReference object,
                                         Deadline deadline);

} // namespace lumetry::atspi
