#pragma once

#include "platform/linux/atspi/message.h"
#include "platform/linux/atspi/object_reference.h"

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
};

struct Asked {
    ObjectReference object;
    Question question = Question::role;
    /// @{ The characters that are meant, from start to before end; only where a question is of
    /// some.
    std::int32_t start = 0;
    std::int32_t end = 0;
    /// @}

    friend bool operator<(const Asked& a, const Asked& b) {
        return std::tie(a.object, a.question, a.start, a.end) <
               std::tie(b.object, b.question, b.start, b.end);
    }
};

/// Without which an object has to be left alone: some log an error for each other question, and
/// their developers may have them end over it. Absent for what every object answers.
[[nodiscard]] std::optional<Interface> interfaceFor(Question question);

/// @param coordinates those of places
[[nodiscard]] Message requestFor(const Asked& asked, AtspiCoordType coordinates);

} // namespace lumetry::atspi
