#pragma once

#include "base/geometry.h"
#include "rig/private_desktop.h"

#include <map>
#include <optional>
#include <string>

namespace lumetry::accuracy {

/// What lumetry-measure says of one point.
struct Reading {
    std::string header;
    std::map<std::string, std::string> rows; ///< label to value; the font's weight as "weight"

    [[nodiscard]] std::optional<std::string> value(const std::string& label) const;

    friend bool operator==(const Reading&, const Reading&) = default;
};

/// The first that two measurements in a row agree on, or the last of a few: on a busy machine an
/// application may answer too late.
/// Throws std::runtime_error when the program cannot measure.
[[nodiscard]] Reading measure(const desktop::PrivateDesktop& desktop, Point at);

} // namespace lumetry::accuracy
