#pragma once

#include "platform/ax_value.h"
#include "platform/linux/atspi/atspi_bus.h"
#include "platform/linux/atspi/deadline.h"
#include "platform/linux/atspi/message.h"
#include "platform/linux/atspi/object_reference.h"

#include <cstdint>
#include <map>
#include <span>
#include <tuple>
#include <vector>

namespace lumetry::atspi {

/// More than anything shows of an element's text, and little enough to be asked of a book.
inline constexpr std::int32_t textBeginningCharacters = 1024;

/// What is asked of an object for its attributes.
enum class Question : std::uint8_t {
    role,
    name,
    text,      ///< its beginning
    wholeText, ///< for those that refuse an end beyond the text's own
    value,
    characterCount,
    parent,
    children,
    extents,
    states,
    textPlace, ///< around those characters
    textPart,  ///< those characters
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

/// Puts questions to objects and, while it keeps answers, puts none twice.
class Answers {
public:
    explicit Answers(AtspiBus& bus) : bus_(bus) {}

    /// Begins to keep answers; false when it does already.
    bool keep();
    void forget();
    [[nodiscard]] bool keeps() const { return keeps_; }

    /// The replies to all questions, in their order, from one exchange at most.
    [[nodiscard]] std::vector<Reply> ask(std::span<const Asked> questions, Deadline deadline);
    [[nodiscard]] Reply ask(const Asked& question, Deadline deadline);
    /// Keeps a reply that was got in another way.
    void remember(const Asked& question, const Reply& reply);

private:
    AtspiBus& bus_;
    bool keeps_ = false;
    std::map<Asked, Reply> kept_;
};

} // namespace lumetry::atspi
