#pragma once

#include "base/int_geometry.h"
#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::atspi {

/// The text without what stands in it for things that are no text, such as a picture or a paragraph
/// of its own, and without what Gecko puts behind some characters to make them count twice.
[[nodiscard]] std::string withoutPlaceholders(std::string_view text);

/// @{ An object's characters from the first to before the second. What is known of the beginning of
/// its text is not asked for again.
void addTextQuery(const ReplyCache& cache, const ObjectReference& object, std::int32_t first,
                  std::int32_t second, std::vector<Query>& queries);
[[nodiscard]] std::optional<std::string> textBetween(const ReplyCache& cache,
                                                     const ObjectReference& object,
                                                     std::int32_t first, std::int32_t second);
/// @}

/// A piece of an object's text, between whatever else is in the object.
struct TextLeaf {
    std::int32_t start = 0;         ///< its first character's place in the text
    std::int32_t end = 0;           ///< behind its last character
    IntRect place;                  ///< around its characters, in the application's own units
    std::size_t childrenBefore = 0; ///< how many of the object's children come before it
};

/// Finds the texts for which applications have no objects.
class TextLeaves {
public:
    TextLeaves(Bus& bus, ReplyCache& cache, const Toolkits& toolkits)
        : bus_(bus), cache_(cache), toolkits_(toolkits) {}

    /// The pieces of an object's text that have no objects: of Gecko all, of others the only one in
    /// an object without children, such as a button or a cell. None where the text is to be typed
    /// over: the room that belongs to it is larger than what is typed so far.
    [[nodiscard]] std::vector<TextLeaf> in(const ObjectReference& object, Deadline deadline);
    /// @{ Adds what the same takes of several objects whose roles and interfaces are known, so that
    /// it can be asked together: first what tells the pieces, then their places.
    void addQueries(std::span<const ObjectReference> objects, std::vector<Query>& queries) const;
    void addPlaceQueries(std::span<const ObjectReference> objects, std::vector<Query>& queries,
                         Deadline deadline);
    /// @}

private:
    [[nodiscard]] bool mayHoldText(const ObjectReference& object) const;
    [[nodiscard]] std::vector<Question> questionsFor(const ObjectReference& object) const;
    [[nodiscard]] std::vector<TextLeaf> piecesOfOwn(const ObjectReference& object,
                                                    Deadline deadline);
    [[nodiscard]] std::vector<TextLeaf> piecesIn(const ObjectReference& object, bool isItem,
                                                 Deadline deadline);
    [[nodiscard]] std::vector<TextLeaf> placed(const ObjectReference& object,
                                               std::vector<TextLeaf> pieces, Deadline deadline);
    void awaitPlaces(const ObjectReference& object, const TextLeaf& text, Deadline deadline);

    Bus& bus_;
    ReplyCache& cache_;
    const Toolkits& toolkits_;
    std::uint64_t generation_ = 0;
    std::set<std::string> awaited_; ///< the applications that tell the places of texts by now
};

} // namespace lumetry::atspi
