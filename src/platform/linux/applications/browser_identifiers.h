#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lumetry {

/// A browser as it is packaged, and the identifier under which it is known everywhere.
struct PackagedBrowser {
    std::string_view desktopId;
    std::string_view identifier;
};
[[nodiscard]] std::span<const PackagedBrowser> packagedBrowsers();

/// The identifier under which a browser is known everywhere, for the many under which it is
/// packaged; any other application keeps the one it has.
[[nodiscard]] std::string commonIdentifier(std::string_view desktopId);

} // namespace lumetry
