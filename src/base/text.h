#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// The text as well-formed UTF-8: every byte that belongs to no character becomes U+FFFD.
[[nodiscard]] std::string validUtf8(std::string_view text);
/// Without the white space and line breaks (Unicode's) at either end. Takes well-formed UTF-8.
[[nodiscard]] std::string trimmed(std::string_view text);
/// The first characters as a reader counts them (extended grapheme clusters, Unicode UAX #29), so
/// that an emoji sequence or a letter with its accents is never cut. Takes well-formed UTF-8.
[[nodiscard]] std::string firstCharacters(std::string_view text, std::size_t count);
/// The text with every occurrence of the pattern taken out.
[[nodiscard]] std::string removingOccurrences(std::string_view text, std::string_view pattern);

/// The parts between the separators. Behind a separator at the end there is no part, nor in an
/// empty text, so that the lines of a text are what its line breaks separate.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);
/// The same without the empty ones.
[[nodiscard]] std::vector<std::string> nonEmptyParts(std::string_view text, char separator);

/// The text with its line breaks and other control characters (Unicode's) escaped, such as "\\n"
/// and
/// "\\u001B", so that it stands on one line.
[[nodiscard]] std::string onOneLine(std::string_view text);

/// The text with every letter in its lower case, as far as that is a single letter. Takes
/// well-formed UTF-8.
[[nodiscard]] std::string lowerCase(std::string_view text);

} // namespace lumetry
