#include "render/overlay_view.h"

#include "platform/window_server.h"

#include <algorithm>

namespace lumetry {
namespace {

constexpr Font exitKeyFont = {FontFamily::system, 10.5, FontWeight::semibold};
constexpr Font exitWordFont = {FontFamily::system, 10.5, FontWeight::medium};

/// The screen whose corner the exit tag sits in; absent without any.
std::optional<Screen> exitTagScreen(WindowServer& windowServer) {
    const auto screens = windowServer.screens();
    const auto primary = std::ranges::find_if(screens, [](const Screen& screen) {
        return screen.frame.origin() == Point{0, 0};
    });
    return primary != screens.end() ? *primary : windowServer.mainScreen();
}

} // namespace

void OverlayView::draw(Canvas& canvas, const Rect& windowFrame) {
    if (exitTag) {
        drawExitTag(canvas, windowFrame);
    }
    if (measureA) {
        drawMeasure(canvas, *measureA, measureB);
        return;
    }
    if (!targetRect.isEmpty()) {
        drawSelection(canvas, targetRect);
    }
    drawGlance(canvas, *this, windowFrame.size());
}

void OverlayView::drawExitTag(Canvas& canvas, const Rect& windowFrame) const {
    constexpr double edgeDistance = 14;
    constexpr double tagHeight = 24;
    constexpr double capHeight = 16;
    constexpr double capPadding = 5;
    constexpr double sidePadding = 9;
    constexpr double wordDistance = 6;

    const auto screen = exitTagScreen(windowServer_);
    if (!screen) {
        return;
    }
    const Size key = canvas.measure("esc", exitKeyFont);
    const Size word = canvas.measure("exit", exitWordFont);
    const double capWidth = key.width + 2 * capPadding;
    const double tagWidth = capWidth + 2 * sidePadding + wordDistance + word.width;
    const Rect tag = {screen->visibleFrame.maxX() - windowFrame.x - tagWidth - edgeDistance,
                      screen->visibleFrame.minY() - windowFrame.y + edgeDistance, tagWidth,
                      tagHeight};
    canvas.fillRoundedRect(tag, 12, darkBackground.withAlpha(0.82));
    canvas.strokeRoundedRect(inset(tag, 0.5, 0.5), 12, white.withAlpha(0.1), 1);

    const Rect cap = {tag.minX() + sidePadding, tag.midY() - capHeight / 2, capWidth, capHeight};
    canvas.fillRoundedRect(cap, 4, white.withAlpha(0.12));
    canvas.drawText("esc", {cap.midX() - key.width / 2, cap.midY() - key.height / 2}, exitKeyFont,
                    white.withAlpha(0.92));
    canvas.drawText("exit", {cap.maxX() + wordDistance, tag.midY() - word.height / 2}, exitWordFont,
                    white.withAlpha(0.62));
}

} // namespace lumetry
