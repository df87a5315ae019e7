#pragma once

#include "base/geometry.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace lumetry {

using Json = nlohmann::ordered_json;

/// Whole numbers as such, and null for what JSON cannot hold.
[[nodiscard]] Json jsonNumber(double value);
/// [x, y, width, height], null for none.
[[nodiscard]] Json jsonRect(const std::optional<Rect>& rect);
/// Indented, with a line break at its end; what is no UTF-8 is replaced.
[[nodiscard]] std::string dumped(const Json& json);

} // namespace lumetry
