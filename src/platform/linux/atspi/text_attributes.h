#pragma once

#include "platform/ax_value.h"

#include <map>
#include <string>

namespace lumetry::atspi {

/// How a run of text is set, as applications tell it: names to values, such as "family-name" to
/// "Inter", "size" to "10.5pt", "weight" to "700" and "fg-color" to "30,144,255".
using TextAttributes = std::map<std::string, std::string, std::less<>>;

/// The same as attributes of an attributed string: "AXFont" with family, size in pixels and, where
/// the weight is told, a font name that contains it; "AXForegroundColor". What is not told, or
/// makes no sense, is left out.
[[nodiscard]] AXDictionary runAttributes(const TextAttributes& attributes);

} // namespace lumetry::atspi
