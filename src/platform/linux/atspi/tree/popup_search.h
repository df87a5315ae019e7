#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/bus/object_reference.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <functional>
#include <optional>
#include <vector>

namespace lumetry::atspi {

/// Looks for what a popup shows, which some applications do not keep in the popup's own tree: it
/// lies somewhere below what has opened the popup. Goes down level by level, each level in two
/// exchanges.
/// @param starts where to look below
/// @param habits of the application that they are all in
/// @param fits says from the place of an object that is on screen whether it is the one
/// @return absent when there is none, or not where one can look in time
[[nodiscard]] std::optional<ObjectReference>
firstShowingBelow(Bus& bus, std::vector<ObjectReference> starts, const Habits& habits,
                  const std::function<bool(const Extents&)>& fits, Deadline deadline);

} // namespace lumetry::atspi
