#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

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
    toolkitName,   ///< what an application is built with; of its root
    attributes,    ///< whatever else an object tells of itself
    labels,        ///< the objects that name it
};

/// A question to one object.
struct Query {
    ObjectReference object;
    Question question = Question::role;
    /// @{ What is meant: characters, from the first to before the second; a row and a column; a
    /// point; a child's number. Only where a question is of such.
    std::int32_t first = 0;
    std::int32_t second = 0;
    /// @}

    friend bool operator==(const Query&, const Query&) = default;
    friend bool operator<(const Query& a, const Query& b) {
        return std::tie(a.object, a.question, a.first, a.second) <
               std::tie(b.object, b.question, b.first, b.second);
    }
};

/// Without which an object has to be left alone: some log an error for each other question, and
/// their developers may have them end over it. Absent for what every object answers.
[[nodiscard]] std::optional<Interface> interfaceFor(Question question);

/// @param coordinates those of places; of no account where none is asked for
[[nodiscard]] Message requestFor(const Query& query,
                                 AtspiCoordType coordinates = ATSPI_COORD_TYPE_SCREEN);

/// What a reply to the question says; absent where it is none.
template<Question question>
[[nodiscard]] auto read(const Reply& reply) {
    using enum Question;
    if constexpr (question == name || question == text || question == textPart ||
                  question == toolkitName) {
        return textOf(reply);
    } else if constexpr (question == parent || question == cell || question == objectAtPoint) {
        return referenceOf(reply);
    } else if constexpr (question == children) {
        return referencesOf(reply);
    } else if constexpr (question == extents || question == textPlace) {
        return extentsOf(reply);
    } else if constexpr (question == labels) {
        return labelsOf(reply);
    } else if constexpr (question == states) {
        return statesOf(reply);
    } else if constexpr (question == interfaces) {
        return interfacesOf(reply);
    } else if constexpr (question == value) {
        return numberOf(reply);
    } else if constexpr (question == attributeRun || question == attributes) {
        return attributesOf(reply);
    } else {
        return integerOf(reply);
    }
}

/// What was said, by what was asked. Far smaller than the messages that said it.
class Replies {
public:
    [[nodiscard]] bool contains(const Query& query) const { return find(query) != nullptr; }
    /// Of what was not asked, that there was silence.
    [[nodiscard]] Outcome outcome(const Query& query) const;
    /// What the object said; absent where it said nothing, or has not been asked.
    template<Question question>
    [[nodiscard]] auto get(const ObjectReference& object, std::int32_t first = 0,
                           std::int32_t second = 0) const {
        using Answer = decltype(read<question>(Reply()));
        const Entry* const entry = find(object, {question, first, second});
        if (entry == nullptr) {
            return Answer();
        }
        if constexpr (std::is_same_v<Answer, std::optional<ObjectReference>>) {
            const auto* references = std::get_if<References>(&entry->value);
            return references ? Answer(references->front()) : Answer();
        } else if constexpr (std::is_same_v<Answer, std::optional<TextAttributes>>) {
            const auto* message = std::get_if<std::shared_ptr<DBusMessage>>(&entry->value);
            return message ? read<question>({entry->outcome, *message}) : Answer();
        } else {
            const auto* value = std::get_if<typename Answer::value_type>(&entry->value);
            return value ? Answer(*value) : Answer();
        }
    }

    void insert(const Query& query, const Reply& reply);
    void clear() { entries_.clear(); }
    /// Whatever objects of that application have said.
    void erase(const std::string& application);

private:
    using References = std::vector<ObjectReference>;
    /// A single reference is a list of one; what has many parts stays in its message.
    using Value = std::variant<std::monostate, std::string, References, IntRect, std::int64_t,
                               std::uint64_t, double, Interfaces, std::shared_ptr<DBusMessage>>;
    struct Asked {
        Question question = Question::role;
        std::int32_t first = 0;
        std::int32_t second = 0;

        friend bool operator==(const Asked&, const Asked&) = default;
        friend bool operator<(const Asked& a, const Asked& b) {
            return std::tie(a.question, a.first, a.second) <
                   std::tie(b.question, b.first, b.second);
        }
    };
    struct Entry {
        Asked asked;
        Outcome outcome = Outcome::silent;
        Value value;
    };
    struct Hash {
        std::size_t operator()(const ObjectReference& object) const {
            return std::hash<std::string>()(object.path);
        }
    };

    template<Question question>
    static void store(const Reply& reply, Value& value);
    [[nodiscard]] const Entry* find(const ObjectReference& object, const Asked& asked) const;
    [[nodiscard]] const Entry* find(const Query& query) const {
        return find(query.object, {query.question, query.first, query.second});
    }

    std::unordered_map<ObjectReference, std::vector<Entry>, Hash> entries_; ///< sorted
};

/// Asks all of them together, whatever they are, and adds the replies. What is asked of a text's
/// beginning ends with the text, where its length is among the replies.
void exchange(Bus& bus, const Toolkits& toolkits, std::span<const Query> queries, Deadline deadline,
              Replies& replies);
/// The same by themselves.
[[nodiscard]] Replies exchange(Bus& bus, const Toolkits& toolkits, std::span<const Query> queries,
                               Deadline deadline);

} // namespace lumetry::atspi
