#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "platform/ax_ui_element.h"
#include "platform/platform.h"
#include "probe/hit_test.h"
#include "probe/probe_state.h"
#include "probe/role_bucket.h"
#include "render/glance_row.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// Where the pointer is, at one moment.
struct PointerSample {
    double time = 0;                 ///< seconds since the reference date
    Point at;                        ///< accessibility space
    std::optional<WindowHit> window; ///< of another application under it
};

/// What was found under the pointer, and how.
struct HoverOutcome {
    std::string_view path; ///< the way it was found, as the detection log names it
    std::string header;
    std::vector<GlanceRow> rows;
    std::optional<Rect> box; ///< of the selection, in accessibility space
    bool liveColor = false;  ///< whether the colour under the pointer is wanted as a last row
};

/// Turns pointer samples into readouts, and remembers the last ones so that resting on an element
/// costs little.
class Inspector {
public:
    Inspector(const Platform& platform, ProbeState& state) : platform_(platform), state_(state) {}

    /// What lies under the pointer: an element with its frame, else a box found in the pixels.
    /// @param windowNumber of the window that covers the screen and is not to be read; 0 for none
    [[nodiscard]] HoverOutcome look(const PointerSample& sample, std::uint32_t windowNumber);

    /// Adds the colour under the pointer as a last row, or what it takes to read it.
    void addLiveColor(HoverOutcome& outcome, const PointerSample& sample,
                      std::uint32_t windowNumber);

    /// The selection shown last, in accessibility space.
    [[nodiscard]] const std::optional<Rect>& lastHoveredFrame() const { return lastHoveredFrame_; }

    /// Forgets readouts, boxes and colours, but not the selection.
    void forget();

private:
    [[nodiscard]] HoverOutcome lookAtPixels(const PointerSample& sample,
                                            std::uint32_t windowNumber);
    [[nodiscard]] HoverOutcome readout(const ResolvedComponent& resolved, const Rect& frame,
                                       std::uint32_t windowNumber);
    [[nodiscard]] std::optional<Rect> boxAround(Point at, std::uint32_t windowNumber);

    const Platform& platform_;
    ProbeState& state_;

    std::optional<Rect> lastHoveredFrame_;
    std::optional<AXUIElement> cachedComponent_;
    Rect cachedFrame_ = Rect::null();
    std::string cachedHeader_;
    std::vector<GlanceRow> cachedRows_;
    bool cachedLiveColor_ = false;
    std::optional<Rect> cachedPixelBox_;
    double lastColorAt_ = 0;
    std::optional<Color> lastColor_;
};

} // namespace lumetry
