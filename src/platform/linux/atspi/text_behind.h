#pragma once

#include "platform/linux/atspi/answers.h"
#include "platform/linux/atspi/deadline.h"
#include "platform/linux/atspi/object_reference.h"

namespace lumetry::atspi {

/// Qt shows a text that may be longer than its place through a widget in front of it: the text
/// behind such a widget; any other object itself.
[[nodiscard]] ObjectReference textBehind(Answers& answers, ObjectReference object,
                                         Deadline deadline);

} // namespace lumetry::atspi
