#pragma once

#include "base/geometry.h"
#include "support/real_desktop/private_desktop.h"

#include <map>
#include <optional>
#include <string>

namespace lumetry::accuracy {

/// What lumetry-measure says of one point.
struct Reading {
    std::string header;
    std::map<std::string, std::string> rows; ///< label to value; the font's weight as "weight"

    [[nodiscard]] std::optional<std::string> value(const std::string& label) const;
};

/// Throws std::runtime_error when the program cannot measure.
[[nodiscard]] Reading measure(const desktop::PrivateDesktop& desktop, Point at);

} // namespace lumetry::accuracy
