#include "platform/linux/atspi/hit_test/text_behind.h"

#include <atspi/atspi.h>

#include <utility>

namespace lumetry::atspi {

ObjectReference textBehind(ReplyCache& cache, ObjectReference object, Deadline deadline) {
    if (integerOf(cache.ask({object, Question::role}, deadline)) != ATSPI_ROLE_FILLER) {
        return object;
    }
    auto parent = referenceOf(cache.ask({object, Question::parent}, deadline));
    const bool hasText =
        parent && integerOf(cache.ask({*parent, Question::characterCount}, deadline));
    return hasText ? std::move(*parent) : std::move(object);
}

} // namespace lumetry::atspi
