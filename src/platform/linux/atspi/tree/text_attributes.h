#pragma once

#include "platform/ax_value.h"
#include "platform/linux/atspi/bus/message.h"

#include <cstdint>

namespace lumetry::atspi {

/// What toolkits mean by some of that.
struct FontHabits {
    /// Sizes are told in the units of the application's places, not in typographic points.
    bool inOwnUnits = false;
    /// "scale" is that of the size; elsewhere it is something else or not told.
    bool scalesSize = false;
    /// In which numbers weights are told.
    enum class Weights : std::uint8_t {
        ofStyleSheets, ///< 400 is regular, 700 bold
        ofLibreOffice, ///< four times its own: of texts 100 is regular and 150 bold, of labels, of
                       ///< which the size is told in pixels, 5 and 8
    } weights = Weights::ofStyleSheets;
};

/// The same as attributes of an attributed string: "AXFont" with family, size in whole pixels and,
/// where the weight is told, a font name that contains it; "AXForegroundColor". What is not told,
/// or makes no sense, is left out.
/// @param pointsPerUnit of those units, each the same as a pixel of the font's size
[[nodiscard]] AXDictionary runAttributes(const TextAttributes& told, const FontHabits& habits = {},
                                         double pointsPerUnit = 1);

} // namespace lumetry::atspi
