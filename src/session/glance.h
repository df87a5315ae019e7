#pragma once

#include "base/geometry.h"
#include "platform/platform.h"
#include "probe/role_bucket.h"
#include "render/glance_row.h"

#include <string>
#include <vector>

namespace lumetry {

/// What the panel says of a component.
struct Glance {
    std::string header;
    std::vector<GlanceRow> rows;
};

/// The readout of a component.
/// @param frame of the component, in accessibility space
[[nodiscard]] Glance deriveGlance(const Platform& platform, const ResolvedComponent& resolved,
                                  const Rect& frame);

/// The row "size": width and height rounded to whole points, halves away from zero.
[[nodiscard]] GlanceRow sizeRow(const Size& size);

} // namespace lumetry
