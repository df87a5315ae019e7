#pragma once

#include "base/color.h"
#include "base/geometry.h"
#include "platform/overlay_window.h"
#include "render/glance_row.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace lumetry {

class WindowServer;

/// Draws what the session found: the outline of the element, the glance beside it, in measure mode
/// two outlines and their distances, and the exit tag. It holds no logic of its own: the session
/// sets the fields and asks the window for a redraw. All geometry is in view space.
class OverlayView final : public ContentView {
public:
    /// @param windowServer tells where on the primary screen the exit tag has room
    explicit OverlayView(WindowServer& windowServer) : windowServer_(windowServer) {}

    void draw(Canvas& canvas, const Rect& windowFrame) override;

    Rect targetRect;             ///< of the element; drawn only when it has an area
    std::string header;          ///< first line of the glance
    std::vector<GlanceRow> rows; ///< the glance's other lines
    Point cursorPoint;           ///< the glance is placed beside it when there is no outline
    /// The first, pinned element of a measurement; present in measure mode.
    std::optional<Rect> measureA;
    /// The element under the pointer in measure mode.
    std::optional<Rect> measureB;

    static constexpr Color pink = accentPink;
    static constexpr Color panelBG = darkBackground.withAlpha(0.97);
    static constexpr Color faint = {0.62, 0.62, 0.66, 1};

    bool exitTag = false; ///< whether the exit tag is drawn

private:
    void drawExitTag(Canvas& canvas, const Rect& windowFrame) const;

    WindowServer& windowServer_;
};

/// The outline of an element: a faint fill, an edge and a handle on each corner.
void drawSelection(Canvas& canvas, const Rect& rect);
/// Both outlines and the distances between them; only the first without a second one.
void drawMeasure(Canvas& canvas, const Rect& a, const std::optional<Rect>& b);
/// A labelled line from a to b; nothing when they are less than a point apart.
/// @param dash lengths in points, on and off in turn
void drawGap(Canvas& canvas, Point a, Point b, std::span<const double> dash);
/// The header and rows in a panel beside the outline, or beside the pointer without one. Nothing
/// when both are empty.
void drawGlance(Canvas& canvas, const OverlayView& view, const Size& viewSize);

} // namespace lumetry
