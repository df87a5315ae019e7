#include "render/overlay_view.h"

#include <algorithm>

namespace lumetry {
namespace {

constexpr Font headerFont = {FontFamily::monospacedSystem, 12.5, FontWeight::semibold};
constexpr Font labelFont = {FontFamily::system, 11.5, FontWeight::regular};
constexpr Font valueFont = {FontFamily::monospacedSystem, 11.5, FontWeight::medium};
constexpr double padding = 12;
constexpr double headerHeight = 22;
constexpr double rowHeight = 20;
constexpr double swatchSize = 12;
constexpr double swatchAdvance = 17; ///< the chip and its distance from the value

Size panelSize(const Canvas& canvas, const OverlayView& view) {
    constexpr double leastWidth = 150;
    constexpr double columnGap = 22;
    double content = canvas.measure(view.header, headerFont).width;
    for (const GlanceRow& row : view.rows) {
        content = std::max(content, canvas.measure(row.label, labelFont).width + columnGap +
                                        canvas.measure(row.value, valueFont).width +
                                        (row.swatch ? swatchAdvance : 0));
    }
    return {std::max(leastWidth, content + 2 * padding),
            (view.header.empty() ? 0 : headerHeight) + 2 * padding +
                rowHeight * static_cast<double>(view.rows.size())};
}

Point panelOrigin(const OverlayView& view, const Size& panel, const Size& viewSize) {
    constexpr double outlineDistance = 8;
    constexpr double pointerDistance = 16;
    constexpr double edgeDistance = 6;
    Point origin = {view.cursorPoint.x + pointerDistance,
                    view.cursorPoint.y - panel.height - pointerDistance};
    if (!view.targetRect.isEmpty()) {
        const double above = view.targetRect.maxY() + outlineDistance;
        const double below = view.targetRect.minY() - panel.height - outlineDistance;
        origin = {view.targetRect.minX(), above + panel.height > viewSize.height ? below : above};
    }
    // The upper bound wins when the panel is larger than the view.
    return {
        std::min(std::max(origin.x, edgeDistance), viewSize.width - panel.width - edgeDistance),
        std::min(std::max(origin.y, edgeDistance), viewSize.height - panel.height - edgeDistance)};
}

void drawRow(Canvas& canvas, const GlanceRow& row, const Rect& panel, double line) {
    canvas.drawText(row.label, {panel.minX() + padding, line + 4}, labelFont, OverlayView::faint);
    const double valueX = panel.maxX() - padding - canvas.measure(row.value, valueFont).width;
    canvas.drawText(row.value, {valueX, line + 4}, valueFont, white);
    if (row.swatch) {
        const Rect chip = {valueX - swatchAdvance, line + 5, swatchSize, swatchSize};
        canvas.fillRoundedRect(chip, 3, *row.swatch);
        canvas.strokeRoundedRect(chip, 3, white.withAlpha(0.3), 0.5);
    }
}

} // namespace

void drawGlance(Canvas& canvas, const OverlayView& view, const Size& viewSize) {
    if (view.header.empty() && view.rows.empty()) {
        return;
    }
    const Size size = panelSize(canvas, view);
    const Point origin = panelOrigin(view, size, viewSize);
    const Rect panel = {origin.x, origin.y, size.width, size.height};
    canvas.fillRoundedRect(panel, 9, OverlayView::panelBG);

    double line = panel.maxY() - padding;
    if (!view.header.empty()) {
        line -= headerHeight;
        canvas.drawText(view.header, {panel.minX() + padding, line + 5}, headerFont,
                        OverlayView::pink);
        canvas.strokeLine({panel.minX() + padding, line + 1}, {panel.maxX() - padding, line + 1},
                          white.withAlpha(0.1), 1, {});
    }
    for (const GlanceRow& row : view.rows) {
        line -= rowHeight;
        drawRow(canvas, row, panel, line);
    }
}

} // namespace lumetry
