#include "platform/linux/atspi/tree/questions.h"

#include "platform/linux/atspi/bus/requests.h"

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
    case Question::objectAtPoint:
        return Interface::component;
    case Question::rowCount:
    case Question::columnCount:
    case Question::rowAtIndex:
    case Question::columnAtIndex:
    case Question::cell:
        return Interface::table;
    case Question::interfaces:
    case Question::role:
    case Question::name:
    case Question::parent:
    case Question::children:
    case Question::states:
    case Question::indexInParent:
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
        return getText(asked.object, asked.first, asked.second);
    case Question::textPlace:
        return getRangeExtents(asked.object, asked.first, asked.second, coordinates);
    case Question::attributeRun:
        return getAttributeRun(asked.object, asked.first);
    case Question::indexInParent:
        return getIndexInParent(asked.object);
    case Question::rowCount:
        return getRowCount(asked.object);
    case Question::columnCount:
        return getColumnCount(asked.object);
    case Question::rowAtIndex:
        return getRowAtIndex(asked.object, asked.first);
    case Question::columnAtIndex:
        return getColumnAtIndex(asked.object, asked.first);
    case Question::cell:
        return getCell(asked.object, asked.first, asked.second);
    case Question::objectAtPoint:
        return getAccessibleAtPoint(asked.object, asked.first, asked.second, coordinates);
    }
    return nullptr;
}

} // namespace lumetry::atspi
