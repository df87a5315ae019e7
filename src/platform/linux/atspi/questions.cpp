#include "platform/linux/atspi/questions.h"

#include "platform/linux/atspi/requests.h"

namespace lumetry::atspi {

std::optional<Interface> interfaceFor(Question question) {
    switch (question) {
    case Question::value:
        return Interface::value;
    case Question::characterCount:
    case Question::text:
    case Question::textPart:
    case Question::textPlace:
    case Question::attributeRun:
        return Interface::text;
    case Question::extents:
        return Interface::component;
    case Question::interfaces:
    case Question::role:
    case Question::name:
    case Question::parent:
    case Question::children:
    case Question::states:
        break;
    }
    return std::nullopt;
}

Message requestFor(const Asked& asked, AtspiCoordType coordinates) {
    switch (asked.question) {
    case Question::interfaces:
        return getInterfaces(asked.object);
    case Question::role:
        return getRole(asked.object);
    case Question::name:
        return getName(asked.object);
    case Question::parent:
        return getParent(asked.object);
    case Question::children:
        return getChildren(asked.object);
    case Question::states:
        return getState(asked.object);
    case Question::extents:
        return getExtents(asked.object, coordinates);
    case Question::value:
        return getCurrentValue(asked.object);
    case Question::characterCount:
        return getCharacterCount(asked.object);
    case Question::text:
        return getText(asked.object, 0, textBeginningCharacters);
    case Question::textPart:
        return getText(asked.object, asked.start, asked.end);
    case Question::textPlace:
        return getRangeExtents(asked.object, asked.start, asked.end, coordinates);
    case Question::attributeRun:
        return getAttributeRun(asked.object, asked.start);
    }
    return nullptr;
}

} // namespace lumetry::atspi
