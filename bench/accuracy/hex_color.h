#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lumetry::accuracy {

/// Red, green and blue, from 0 to 255, of the first "#1d4ed8" in a text; absent where there is
/// none.
[[nodiscard]] std::optional<std::array<int, 3>> channelsIn(std::string_view text);

} // namespace lumetry::accuracy
