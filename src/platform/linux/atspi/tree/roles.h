#pragma once

#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace lumetry::atspi {

/// What a role of AT-SPI's is called here, as far as the role alone tells it.
[[nodiscard]] std::string_view axRole(std::int64_t role);

/// What else has to be known to tell what objects of that role are, besides what they implement:
/// the parent, states or children.
[[nodiscard]] std::vector<Question> questionsForRole(std::int64_t role, const Habits& habits);
/// Whether that depends on the parent's role as well.
[[nodiscard]] bool dependsOnParentsRole(std::int64_t role, const Habits& habits);

/// What an object is; absent when it does not tell its role.
/// @param isWindow whether it is known to stand for a window
[[nodiscard]] std::optional<std::string_view> axRoleOf(ReplyCache& cache, const Habits& habits,
                                                       const ObjectReference& object, bool isWindow,
                                                       Deadline deadline);

} // namespace lumetry::atspi
