#include "platform/linux/atspi/tree/text_leaves.h"

#include "base/text.h"
#include "platform/linux/atspi/tree/roles.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::size_t mostPieces = 64;
/// Far longer than what is read at a glance, and little enough for an application to look through.
constexpr std::int64_t longestText = 10000;

/// A place one pixel wide is Chromium's word for none.
constexpr std::int32_t narrowestText = 2;

constexpr std::string_view objectReplacementCharacter = "\xEF\xBF\xBC";
constexpr std::string_view zeroWidthNoBreakSpace = "\xEF\xBB\xBF";

std::int32_t charactersIn(std::string_view text) {
    constexpr unsigned leadingBits = 0xC0;
    constexpr unsigned continuation = 0x80;
    return static_cast<std::int32_t>(std::ranges::count_if(text, [](char byte) {
        return (static_cast<unsigned char>(byte) & leadingBits) != continuation;
    }));
}

/// Behind the bullet or the number of a list's item, which is no part of its text.
std::size_t markerLength(std::string_view item) {
    for (const std::string_view bullet : {"• ", "◦ ", "▪ "}) {
        if (item.starts_with(bullet)) {
            return bullet.size();
        }
    }
    constexpr std::string_view afterNumber = ". ";
    const auto digits = item.find_first_not_of("0123456789");
    const bool numbered = digits != 0 && digits != std::string_view::npos &&
                          item.substr(digits).starts_with(afterNumber);
    return numbered ? digits + afterNumber.size() : 0;
}

/// Without their places yet, and without the white space around them; none where there are more
/// than anything is measured by.
std::vector<TextLeaf> piecesOf(std::string_view text, std::size_t markerLength) {
    constexpr std::string_view whiteSpace = " \t\r\n\f";
    std::vector<TextLeaf> pieces;
    std::int32_t start = 0;
    for (std::size_t children = 0; !text.empty(); ++children) {
        const std::string_view piece = text.substr(0, text.find(objectReplacementCharacter));
        const auto first = piece.find_first_not_of(whiteSpace, children == 0 ? markerLength : 0);
        if (first != std::string_view::npos) {
            if (pieces.size() == mostPieces) {
                return {};
            }
            const auto last = piece.find_last_not_of(whiteSpace);
            const auto pieceStart = start + charactersIn(piece.substr(0, first));
            const auto length = charactersIn(piece.substr(first, last + 1 - first));
            pieces.push_back({pieceStart, pieceStart + length, {}, children});
        }
        start += charactersIn(piece) + 1;
        text.remove_prefix(std::min(text.size(), piece.size() + objectReplacementCharacter.size()));
    }
    return pieces;
}

/// Whether what the object holds is typed, or chosen instead of typed: the room around that belongs
/// to it.
bool isField(std::optional<std::int64_t> role, std::uint64_t states, const Habits& habits) {
    constexpr std::array fields = {ATSPI_ROLE_ENTRY, ATSPI_ROLE_PASSWORD_TEXT,
                                   ATSPI_ROLE_SPIN_BUTTON, ATSPI_ROLE_EDITBAR};
    return (hasState(states, ATSPI_STATE_EDITABLE) && !habits.editsDocuments) ||
           std::ranges::find(fields, role) != fields.end();
}

/// Whether the object is nothing but its text, or a field whatever its states.
bool isText(std::int64_t role) {
    constexpr std::array<std::string_view, 7> texts = {"AXStaticText", "AXHeading",  "AXLink",
                                                       "AXTextField",  "AXTextArea", "AXComboBox",
                                                       "AXIncrementor"};
    return std::ranges::find(texts, axRole(role)) != texts.end();
}

/// Chromium rounds the place of a text and that of what is around it, each by itself. The widths of
/// texts have fractions, so that their right ends are known to a pixel only, and one in the middle
/// would seem to be beside it.
void centre(IntRect& text, const IntRect& around) {
    const std::int64_t left = std::int64_t{text.x} - around.x;
    const std::int64_t right = around.width - left - text.width;
    const std::int64_t centred = around.width - 2 * left;
    if (std::abs(left - right) == 1 && left >= 0 && centred > 0) {
        text.width = static_cast<std::int32_t>(centred);
    }
}

/// Whether it is worth asking first what an object is. In Chromium nearly all objects have a text,
/// which is read in any case.
bool asksMayHoldText(Toolkit toolkit) {
    return habitsOf(toolkit).textLeaves == Habits::TextLeaves::ofLeaves &&
           toolkit != Toolkit::chromium;
}

/// The place of that character; the end for the one behind the last. Absent beyond.
std::optional<std::size_t> byteAt(std::string_view text, std::int32_t character) {
    constexpr unsigned leadingBits = 0xC0;
    constexpr unsigned continuation = 0x80;
    for (std::size_t byte = 0; byte < text.size(); ++byte) {
        if ((static_cast<unsigned char>(text[byte]) & leadingBits) != continuation &&
            character-- == 0) {
            return byte;
        }
    }
    return character == 0 ? std::optional(text.size()) : std::nullopt;
}

/// Those characters where all of them are among what is known of the beginning of the text.
std::optional<std::string> partOfBeginning(const ReplyCache& cache, const ObjectReference& object,
                                           std::int32_t first, std::int32_t second) {
    const auto beginning = cache.get<Question::text>(object);
    const auto start = beginning ? byteAt(*beginning, first) : std::nullopt;
    const auto end = start ? byteAt(*beginning, second) : std::nullopt;
    return end && *end >= *start ? std::optional(beginning->substr(*start, *end - *start))
                                 : std::nullopt;
}

} // namespace

std::string withoutPlaceholders(std::string_view text) {
    return removingOccurrences(removingOccurrences(text, objectReplacementCharacter),
                               zeroWidthNoBreakSpace);
}

void addTextQuery(const ReplyCache& cache, const ObjectReference& object, std::int32_t first,
                  std::int32_t second, std::vector<Query>& queries) {
    if (!partOfBeginning(cache, object, first, second)) {
        queries.push_back({object, Question::textPart, first, second});
    }
}

std::optional<std::string> textBetween(const ReplyCache& cache, const ObjectReference& object,
                                       std::int32_t first, std::int32_t second) {
    auto part = partOfBeginning(cache, object, first, second);
    return part ? std::move(part) : cache.get<Question::textPart>(object, first, second);
}

std::vector<TextLeaf> TextLeaves::in(const ObjectReference& object, Deadline deadline) {
    const Toolkit toolkit = toolkits_.of(object);
    if (asksMayHoldText(toolkit)) {
        cache_.ask({{object, Question::role}, {object, Question::interfaces}}, deadline);
    }
    cache_.ask(object, questionsFor(object), deadline);
    auto pieces = piecesOfOwn(object, deadline);
    if (toolkit != Toolkit::chromium || pieces.empty()) {
        return placed(object, std::move(pieces), deadline);
    }
    awaitPlaces(object, pieces.front(), deadline);
    pieces = placed(object, std::move(pieces), deadline);
    if (const auto around = cache_.get<Question::extents>(object)) {
        for (TextLeaf& piece : pieces) {
            centre(piece.place, *around);
        }
    }
    return pieces;
}

void TextLeaves::addQueries(std::span<const ObjectReference> objects,
                            std::vector<Query>& queries) const {
    for (const ObjectReference& object : objects) {
        for (const Question question : questionsFor(object)) {
            queries.push_back({object, question});
        }
    }
}

void TextLeaves::addPlaceQueries(std::span<const ObjectReference> objects,
                                 std::vector<Query>& queries, Deadline deadline) {
    for (const ObjectReference& object : objects) {
        const auto pieces = piecesOfOwn(object, deadline);
        if (!pieces.empty() && toolkits_.of(object) == Toolkit::chromium) {
            awaitPlaces(object, pieces.front(), deadline);
        }
        for (const TextLeaf& piece : pieces) {
            queries.push_back({object, Question::textPlace, piece.start, piece.end});
        }
    }
}

/// What tells the pieces of an object's text; nothing of an object that has none for sure.
std::vector<Question> TextLeaves::questionsFor(const ObjectReference& object) const {
    const Toolkit toolkit = toolkits_.of(object);
    if (asksMayHoldText(toolkit) && !mayHoldText(object)) {
        return {};
    }
    std::vector<Question> questions = {Question::text, Question::characterCount, Question::states,
                                       Question::role};
    if (habitsOf(toolkit).textLeaves == Habits::TextLeaves::ofLeaves) {
        questions.push_back(Question::children);
    }
    if (toolkit == Toolkit::chromium) {
        // The last two are asked along: they are shown of nearly every element.
        questions.insert(questions.end(), {Question::extents, Question::name, Question::value});
    }
    return questions;
}

/// By what is known of the object once it has been hit: most have no text, or are nothing but that.
bool TextLeaves::mayHoldText(const ObjectReference& object) const {
    return !isText(cache_.get<Question::role>(object).value_or(-1)) &&
           cache_.get<Question::interfaces>(object)
               .value_or(Interfaces())
               .contains(Interface::text);
}

/// The pieces that have no objects, without their places yet.
std::vector<TextLeaf> TextLeaves::piecesOfOwn(const ObjectReference& object, Deadline deadline) {
    const Toolkit toolkit = toolkits_.of(object);
    const Habits& habits = toolkits_.habits(toolkit);
    if (asksMayHoldText(toolkit) && !mayHoldText(object)) {
        return {};
    }
    const auto role = cache_.get<Question::role>(object);
    if (isField(role, cache_.get<Question::states>(object).value_or(0), habits)) {
        return {};
    }
    if (habits.textLeaves == Habits::TextLeaves::ofLeaves) {
        const auto children = cache_.get<Question::children>(object);
        if (role == ATSPI_ROLE_STATIC || !children || !children->empty()) {
            return {};
        }
    }
    return piecesIn(object, role == ATSPI_ROLE_LIST_ITEM, deadline);
}

/// Without their places yet; none of a text that is too long.
std::vector<TextLeaf> TextLeaves::piecesIn(const ObjectReference& object, bool isItem,
                                           Deadline deadline) {
    const auto count = cache_.get<Question::characterCount>(object).value_or(0);
    if (count > longestText) {
        return {};
    }
    const auto text =
        count <= textBeginningCharacters
            ? cache_.get<Question::text>(object)
            : cache_.ask<Question::textPart>(object, deadline, 0, static_cast<std::int32_t>(count));
    const std::string_view told = text ? std::string_view(*text) : std::string_view();
    return piecesOf(told, isItem ? markerLength(told) : 0);
}

/// The pieces that have a place, with it.
std::vector<TextLeaf> TextLeaves::placed(const ObjectReference& object,
                                         std::vector<TextLeaf> pieces, Deadline deadline) {
    std::vector<Query> places;
    places.reserve(pieces.size());
    for (const TextLeaf& piece : pieces) {
        places.push_back({object, Question::textPlace, piece.start, piece.end});
    }
    cache_.ask(places, deadline);
    for (TextLeaf& piece : pieces) {
        piece.place =
            cache_.get<Question::textPlace>(object, piece.start, piece.end).value_or(IntRect());
    }
    std::erase_if(pieces, [](const TextLeaf& piece) {
        return piece.place.width < narrowestText || piece.place.height <= 0;
    });
    return pieces;
}

/// Chromium tells the places of texts only once somebody has asked for one, and some milliseconds
/// later. An application that has no place for this text is not waited for again.
void TextLeaves::awaitPlaces(const ObjectReference& object, const TextLeaf& text,
                             Deadline deadline) {
    using namespace std::chrono_literals;
    if (generation_ != bus_.generation()) {
        generation_ = bus_.generation();
        awaited_.clear();
    }
    if (awaited_.contains(object.name)) {
        return;
    }
    const Query query{object, Question::textPlace, text.start, text.end};
    const Deadline latest = std::min(deadline, Clock::now() + 100ms);
    while (true) {
        const auto place = exchange(bus_, toolkits_, std::span(&query, 1), deadline)
                               .get<Question::textPlace>(object, text.start, text.end);
        if (!place) {
            return;
        }
        if (place->width >= narrowestText || Clock::now() >= latest) {
            break;
        }
        std::this_thread::sleep_for(4ms);
    }
    awaited_.insert(object.name);
}

} // namespace lumetry::atspi
