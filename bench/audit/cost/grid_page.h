#pragma once

#include "rig/private_desktop.h"

#include <cstddef>
#include <string>

namespace lumetry::bench {

/// A page of texts, buttons and input fields in turn, in rows from the top of a screen down.
struct GridPage {
    int columns = 40;
    int rows = 50;

    [[nodiscard]] std::size_t items() const {
        return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
    }
    /// A screen on which all of them show.
    [[nodiscard]] desktop::DesktopOptions screen() const;
    [[nodiscard]] std::string html() const;
};

} // namespace lumetry::bench
