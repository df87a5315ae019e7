#include "base/number_text.h"
#include "render/overlay_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace lumetry {
namespace {

constexpr Color pink = OverlayView::pink;
constexpr double outlineRadius = 4;
constexpr double lineWidth = 1.5;
constexpr Font gapFont = {FontFamily::monospacedSystem, 11, FontWeight::semibold};

/// Where a distance across two stretches is drawn: at the middle of what they share, else halfway
/// between their middles.
double crossing(const Span& a, const Span& b) {
    const Span shared = {std::max(a.low, b.low), std::min(a.high, b.high)};
    return shared.high > shared.low ? shared.middle() : (a.middle() + b.middle()) / 2;
}

} // namespace

void drawSelection(Canvas& canvas, const Rect& rect) {
    constexpr double handleRadius = 3;
    canvas.fillRoundedRect(rect, outlineRadius, pink.withAlpha(0.07));
    canvas.strokeRoundedRect(rect, outlineRadius, pink, lineWidth);
    for (const double x : {rect.minX(), rect.maxX()}) {
        for (const double y : {rect.minY(), rect.maxY()}) {
            const Rect handle = {x - handleRadius, y - handleRadius, 2 * handleRadius,
                                 2 * handleRadius};
            canvas.fillEllipse(handle, white);
            canvas.strokeEllipse(handle, pink, lineWidth);
        }
    }
}

void drawGap(Canvas& canvas, Point a, Point b, std::span<const double> dash) {
    constexpr double paddingX = 6;
    constexpr double paddingY = 3;
    constexpr double pillRadius = 5;

    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (!(length >= 1)) {
        return;
    }
    canvas.strokeLine(a, b, pink, lineWidth, dash);
    const std::string label = wholeNumber(length) + "px";
    const Size text = canvas.measure(label, gapFont);
    const Point middle = {(a.x + b.x) / 2, (a.y + b.y) / 2};
    const Rect pill = {middle.x - text.width / 2 - paddingX, middle.y - text.height / 2 - paddingY,
                       text.width + 2 * paddingX, text.height + 2 * paddingY};
    canvas.fillRoundedRect(pill, pillRadius, pink);
    canvas.drawText(label, {pill.minX() + paddingX, pill.minY() + paddingY}, gapFont, white);
}

void drawMeasure(Canvas& canvas, const Rect& a, const std::optional<Rect>& b) {
    constexpr std::array<double, 2> dash = {5, 3};
    drawSelection(canvas, a);
    if (!b || b->isEmpty()) {
        return;
    }
    canvas.strokeRoundedRect(*b, outlineRadius, pink, lineWidth);
    if (const auto gap = gapBetween(horizontalSpan(a), horizontalSpan(*b))) {
        const double y = crossing(verticalSpan(a), verticalSpan(*b));
        drawGap(canvas, {gap->low, y}, {gap->high, y}, dash);
    }
    if (const auto gap = gapBetween(verticalSpan(a), verticalSpan(*b))) {
        const double x = crossing(horizontalSpan(a), horizontalSpan(*b));
        drawGap(canvas, {x, gap->low}, {x, gap->high}, dash);
    }
}

} // namespace lumetry
