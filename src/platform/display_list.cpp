#include "platform/display_list.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace lumetry {
namespace {

constexpr double spare = 1;

struct Coverage {
    Rect operator()(const FillRoundedRect& command) const {
        return inset(command.rect, -spare, -spare);
    }
    Rect operator()(const FillEllipse& command) const {
        return inset(command.rect, -spare, -spare);
    }
    Rect operator()(const StrokeRoundedRect& command) const {
        return around(command.rect, command.lineWidth);
    }
    Rect operator()(const StrokeEllipse& command) const {
        return around(command.rect, command.lineWidth);
    }
    Rect operator()(const StrokeLine& command) const {
        const auto [left, right] = std::minmax(command.a.x, command.b.x);
        const auto [bottom, top] = std::minmax(command.a.y, command.b.y);
        return around({left, bottom, right - left, top - bottom}, command.lineWidth);
    }
    Rect operator()(const DrawText& command) const {
        // Text begins on a whole pixel, which may be the next one.
        const double reach = 2 * spare + command.overhang;
        return inset(command.lineBox, -reach, -reach);
    }

    static Rect around(const Rect& rect, double lineWidth) {
        const double reach = lineWidth / 2 + spare;
        return inset(rect, -reach, -reach);
    }
};

} // namespace

Rect coverage(const DrawCommand& command) {
    return std::visit(Coverage{}, command);
}

std::vector<Rect> changedAreas(const DisplayList& before, const DisplayList& after) {
    const auto [firstBefore, firstAfter] =
        std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto [lastBefore, lastAfter] =
        std::mismatch(before.rbegin(), std::make_reverse_iterator(firstBefore), after.rbegin(),
                      std::make_reverse_iterator(firstAfter));
    std::vector<Rect> areas;
    std::transform(firstBefore, lastBefore.base(), std::back_inserter(areas), coverage);
    std::transform(firstAfter, lastAfter.base(), std::back_inserter(areas), coverage);
    return areas;
}

void RecordingCanvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    list_.emplace_back(FillRoundedRect{rect, radius, color});
}

void RecordingCanvas::strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                        double lineWidth) {
    list_.emplace_back(StrokeRoundedRect{rect, radius, color, lineWidth});
}

void RecordingCanvas::fillEllipse(const Rect& rect, const Color& color) {
    list_.emplace_back(FillEllipse{rect, color});
}

void RecordingCanvas::strokeEllipse(const Rect& rect, const Color& color, double lineWidth) {
    list_.emplace_back(StrokeEllipse{rect, color, lineWidth});
}

void RecordingCanvas::strokeLine(Point a, Point b, const Color& color, double lineWidth,
                                 std::span<const double> dash) {
    list_.emplace_back(StrokeLine{a, b, color, lineWidth, {dash.begin(), dash.end()}});
}

Size RecordingCanvas::measure(std::string_view text, const Font& font) const {
    return metrics_.measure(text, font);
}

void RecordingCanvas::drawText(std::string_view text, Point lowerLeft, const Font& font,
                               const Color& color) {
    const Size size = measure(text, font);
    list_.emplace_back(DrawText{std::string(text),
                                {lowerLeft.x, lowerLeft.y, size.width, size.height},
                                font,
                                color,
                                metrics_.overhang(text, font)});
}

} // namespace lumetry
