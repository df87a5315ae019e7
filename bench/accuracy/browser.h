#pragma once

#include <cstdint>

namespace lumetry::accuracy {

/// What the page is shown in.
enum class Browser : std::uint8_t { chromium, firefox };

} // namespace lumetry::accuracy
