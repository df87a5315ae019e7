#pragma once

#include <string>

namespace lumetry {

/// What a variable of the environment says; the other text when it is not set, or empty.
[[nodiscard]] std::string environmentText(const char* name, std::string otherwise = {});

} // namespace lumetry
