#include "platform/linux/atspi/bare_texts.h"

#include "base/text.h"
#include "platform/linux/atspi/requests.h"
#include "platform/linux/atspi/states.h"

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

constexpr std::size_t mostPieces = 16;
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

/// Behind the bullet of a list's item, which is set in a font of its own.
std::size_t bulletLength(std::string_view piece) {
    for (const std::string_view bullet : {"• ", "◦ ", "▪ "}) {
        if (piece.starts_with(bullet)) {
            return bullet.size();
        }
    }
    return 0;
}

/// Without their places yet, and without the white space around them.
std::vector<BareText> piecesOf(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n\f";
    std::vector<BareText> pieces;
    std::int32_t start = 0;
    for (std::size_t children = 0; !text.empty() && pieces.size() < mostPieces; ++children) {
        const std::string_view piece = text.substr(0, text.find(objectReplacementCharacter));
        const auto first = piece.find_first_not_of(whiteSpace, bulletLength(piece));
        if (first != std::string_view::npos) {
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

bool isLeafAroundText(const Reply& role, const Reply& children) {
    const auto inside = referencesOf(children);
    return integerOf(role) != ATSPI_ROLE_STATIC && inside && inside->empty();
}

/// Chromium rounds the place of a text and that of what is around it, each by itself. The widths of
/// texts have fractions, so that their right ends are known to a pixel only, and one in the middle
/// would seem to be beside it.
void centre(Extents& text, const Extents& around) {
    const std::int32_t left = text.x - around.x;
    const std::int32_t right = around.width - left - text.width;
    if (std::abs(left - right) == 1) {
        text.width = around.width - 2 * left;
    }
}

} // namespace

std::string withoutPlaceholders(std::string_view text) {
    return removingOccurrences(removingOccurrences(text, objectReplacementCharacter),
                               zeroWidthNoBreakSpace);
}

std::vector<BareText> BareTexts::in(const ObjectReference& object, Toolkit toolkit,
                                    Deadline deadline) {
    if (toolkit != Toolkit::gecko && toolkit != Toolkit::chromium) {
        return {};
    }
    // The last two are asked along: they are shown of nearly every element.
    const std::array<Asked, 8> questions = {{{object, Question::text},
                                             {object, Question::characterCount},
                                             {object, Question::states},
                                             {object, Question::role},
                                             {object, Question::children},
                                             {object, Question::extents},
                                             {object, Question::name},
                                             {object, Question::value}}};
    const auto replies = answers_.ask(questions, deadline);
    if (hasState(statesOf(replies[2]).value_or(0), ATSPI_STATE_EDITABLE)) {
        return {};
    }
    if (toolkit == Toolkit::chromium && !isLeafAroundText(replies[3], replies[4])) {
        return {};
    }
    const auto text = beginningOfText(answers_, object, replies[0], replies[1], deadline);
    auto pieces = piecesOf(text.value_or(""));
    const auto count = integerOf(replies[1]).value_or(0);
    if (pieces.size() == 1 && count > textBeginningCharacters && count <= longestText) {
        pieces.front().end = static_cast<std::int32_t>(count);
    }
    if (toolkit == Toolkit::gecko) {
        return placed(object, std::move(pieces), deadline);
    }
    if (!pieces.empty()) {
        awaitPlaces(object, deadline);
    }
    pieces = placed(object, std::move(pieces), deadline);
    if (const auto around = extentsOf(replies[5])) {
        for (BareText& piece : pieces) {
            centre(piece.place, *around);
        }
    }
    return pieces;
}

/// The pieces that have a place, with it.
std::vector<BareText> BareTexts::placed(const ObjectReference& object, std::vector<BareText> pieces,
                                        Deadline deadline) {
    std::vector<Asked> places;
    places.reserve(pieces.size());
    for (const BareText& piece : pieces) {
        places.push_back({object, Question::textPlace, piece.start, piece.end});
    }
    const auto told = answers_.ask(places, deadline);
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        pieces[index].place = extentsOf(told[index]).value_or(Extents());
    }
    std::erase_if(pieces, [](const BareText& piece) {
        return piece.place.width < narrowestText || piece.place.height <= 0;
    });
    return pieces;
}

/// Chromium tells the places of texts only once somebody has asked for one, and some milliseconds
/// later.
void BareTexts::awaitPlaces(const ObjectReference& object, Deadline deadline) {
    using namespace std::chrono_literals;
    if (!placing_.insert(object.name).second) {
        return;
    }
    const Deadline latest = std::min(deadline, Clock::now() + 100ms);
    while (Clock::now() < latest) {
        const auto place = extentsOf(bus_.exchange(getRangeExtents(object, 0, 1), latest));
        if (!place || place->width > 0) {
            return;
        }
        std::this_thread::sleep_for(4ms);
    }
}

std::optional<std::string> beginningOfText(Answers& answers, const ObjectReference& object,
                                           const Reply& text, const Reply& count,
                                           Deadline deadline) {
    auto characters = textOf(text);
    const std::int64_t length = integerOf(count).value_or(0);
    if (characters && characters->empty() && length > 0 && length < textBeginningCharacters) {
        characters = textOf(answers.ask({object, Question::wholeText}, deadline));
    }
    return characters;
}

} // namespace lumetry::atspi
