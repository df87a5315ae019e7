#pragma once

#include <string>

namespace lumetry::accuracy {

inline constexpr int screenWidth = 1920;  ///< pixels
inline constexpr int screenHeight = 1400; ///< pixels

/// A page that fits on the screen, with elements of many kinds that are styled in many ways. Once
/// it is laid out it posts to its own server, under truthPath, where each element is and how it is
/// styled, as the browser itself says: what parseTruth reads.
[[nodiscard]] std::string pageHtml();

inline constexpr const char* truthPath = "/truth";

/// Asks each element for its place and style; the end of the page.
[[nodiscard]] std::string pageScript();

} // namespace lumetry::accuracy
