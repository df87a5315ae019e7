#pragma once

#include "platform/linux/atspi/bus/object_reference.h"
#include "platform/linux/atspi/tree/inquiry.h"

#include <optional>

namespace lumetry::atspi {

/// The last of the object's children, which is the topmost, that is seen at the inquiry's point;
/// absent where none is. Found by the places that the children report; where very many follow each
/// other, one that is out of their order is not.
[[nodiscard]] std::optional<ObjectReference> childAtPoint(Inquiry& inquiry,
                                                          const ObjectReference& object);

} // namespace lumetry::atspi
