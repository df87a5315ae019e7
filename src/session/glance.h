#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "pixels/surface.h"
#include "platform/platform.h"
#include "probe/role_bucket.h"
#include "probe/spacing.h"
#include "probe/typography.h"
#include "render/glance_row.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// What the rows of a component were made from; absent, or empty, what its class does not show.
struct Measures {
    SurfaceInfo surface;
    TextInfo text;
    std::optional<std::string> padding; ///< as axPadding says it
    std::optional<CollectionGap> spacing;
};

/// What the panel says of a component.
struct Glance {
    std::string header;
    std::vector<GlanceRow> rows;
    bool liveColor = false; ///< whether the colour under the pointer is wanted as a last row
    Measures measures = {};
};

/// The readout of a component. Reads the application's element tree, and the screen once at most.
/// @param frame of the component, in accessibility space
/// @param windowNumber of the window that covers the screen and is not to be read
[[nodiscard]] Glance deriveGlance(const Platform& platform, const ResolvedComponent& resolved,
                                  const Rect& frame, std::uint32_t windowNumber);

/// What a component is called: its role without its prefix and, after a dot, the beginning of its
/// title.
/// @param role such as "AXButton"
/// @param title trimmed; empty for none
[[nodiscard]] std::string componentHeader(const std::string& role, const std::string& title);

/// The row "size": width and height rounded to whole points, halves away from zero.
[[nodiscard]] GlanceRow sizeRow(const Size& size);

/// Adds the rows "fill" and "radius", each where the surface has it.
void addSurfaceRows(std::vector<GlanceRow>& rows, const SurfaceInfo& surface);

/// The row "contrast": the ratio of the two colours and the WCAG 2.0 level that it reaches for
/// text.
[[nodiscard]] GlanceRow contrastRow(const Color& foreground, const Color& background);

} // namespace lumetry
