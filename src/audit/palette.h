#pragma once

#include "audit/component.h"
#include "base/color.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace lumetry {

/// A colour of a window's surfaces or texts.
struct PaletteColor {
    Color color;
    std::size_t count = 0;    ///< components that have it, be it as their fill or their text's
    bool isFill = false;      ///< of at least one
    bool isText = false;      ///< of at least one
    bool estimated = false;   ///< it is known only from inks and gradients
    std::size_t firstUse = 0; ///< the first of the components
};

/// The colours of the components, equal ones together, the most frequent first.
[[nodiscard]] std::vector<PaletteColor> paletteOf(std::span<const Component> components);

/// What the components of a window have in common. Each with how many there are, the most frequent
/// first.
struct Inventory {
    template<typename Value>
    struct Counted {
        Value value;
        std::size_t count = 0;
    };
    std::vector<PaletteColor> palette;
    std::vector<Counted<Typeface>> type;
    std::vector<Counted<int>> radii;           ///< points
    std::vector<Counted<std::string>> spacing; ///< such as "gap 8px" and "padding 4px 8px"
};

[[nodiscard]] Inventory inventoryOf(std::span<const Component> components);

} // namespace lumetry
