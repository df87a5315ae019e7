#pragma once

#include <string>
#include <string_view>

namespace lumetry {

/// The identifier under which a browser is known everywhere, for the many under which it is
/// packaged; any other application keeps the one it has.
[[nodiscard]] std::string commonIdentifier(std::string_view desktopId);

} // namespace lumetry
