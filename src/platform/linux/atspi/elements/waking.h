#pragma once

#include "platform/linux/atspi/elements/context.h"

#include <sys/types.h>

namespace lumetry::atspi {

/// Has an application build the element trees of its windows. Chromium leaves its pages out until
/// somebody asks its windows for their attributes. Does not wait: the answers do not matter.
void wakeTree(Context& context, pid_t pid);

} // namespace lumetry::atspi
