#pragma once

#include <map>
#include <string>
#include <vector>

namespace lumetry::accuracy {

inline constexpr int windowWidth = 1260; ///< of what is laid out, in points
inline constexpr int windowHeight = 900;

/// What a window is to hold: the properties of one element, by name. "what" says what it is and
/// "id" how it is called; "x" and "y" are its place in the window. Lengths are in points.
using Planned = std::map<std::string, std::string>;

/// Elements of all kinds, styled and strewn at random; the same for the same seed.
[[nodiscard]] std::vector<Planned> makePlan(unsigned seed);

/// For the programs that show it: a line for each element, of properties "name=value" between tabs.
[[nodiscard]] std::string planText(const std::vector<Planned>& plan);

} // namespace lumetry::accuracy
