#include "platform/linux/atspi/text_behind.h"

#include <atspi/atspi.h>

#include <utility>

namespace lumetry::atspi {

ObjectReference textBehind(Answers& answers, ObjectReference object, Deadline deadline) {
    if (integerOf(answers.ask({object, Question::role}, deadline)) != ATSPI_ROLE_FILLER) {
        return object;
    }
    auto parent = referenceOf(answers.ask({object, Question::parent}, deadline));
    const bool hasText =
        parent && integerOf(answers.ask({*parent, Question::characterCount}, deadline));
    return hasText ? std::move(*parent) : std::move(object);
}

} // namespace lumetry::atspi
