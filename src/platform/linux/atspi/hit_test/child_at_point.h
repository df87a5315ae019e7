#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/hit_test/point_queries.h"

#include <optional>

namespace lumetry::atspi {

/// The last of the object's children, which is the topmost, that is seen at the point that is asked
/// about; absent where none is. Found by the places that the children report; where very many
/// follow each other, one that is out of their order is not.
[[nodiscard]] std::optional<ObjectReference> childAtPoint(PointQueries& queries,
                                                          const ObjectReference& object);

} // namespace lumetry::atspi
