#pragma once

#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/bus/object_reference.h"

#include <atspi/atspi.h>

#include <cstdint>
#include <optional>
#include <tuple>

namespace lumetry::atspi {

/// More than anything shows of an element's text, and little enough to be asked of a book.
inline constexpr std::int32_t textBeginningCharacters = 1024;

/// What is asked of an object.
enum class Question : std::uint8_t {
    interfaces, ///< what else it can be asked
    role,
    name,
    parent,
    children,
    states,
    extents,
    value,
    characterCount,
    text,         ///< its beginning
    textPart,     ///< those characters
    textPlace,    ///< around those characters
    attributeRun, ///< how the first of those characters is set, and what holds for the whole text
    indexInParent,
    rowCount, ///< of a table
    columnCount,
    rowAtIndex, ///< of its child with that number
    columnAtIndex,
    cell,          ///< its cell in that row and column
    objectAtPoint, ///< the innermost or some object around it there
};

struct Asked {
    ObjectReference object;
    Question question = Question::role;
    /// @{ What is meant: characters, from the first to before the second; a row and a column; a
    /// point; a child's number. Only where a question is of such.
    std::int32_t first = 0;
    std::int32_t second = 0;
    /// @}

    friend bool operator<(const Asked& a, const Asked& b) {
        return std::tie(a.object, a.question, a.first, a.second) <
               std::tie(b.object, b.question, b.first, b.second);
    }
};

/// Without which an object has to be left alone: some log an error for each other question, and
/// their developers may have them end over it. Absent for what every object answers.
[[nodiscard]] std::optional<Interface> interfaceFor(Question question);

/// @param coordinates those of places
[[nodiscard]] Message requestFor(const Asked& asked, AtspiCoordType coordinates);

} // namespace lumetry::atspi
