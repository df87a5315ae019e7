#include "platform/scaled_canvas.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace lumetry {
namespace {

constexpr double half = 0.5;

/// Edges on whole pixels; one in the middle of a pixel moves inwards.
Rect onWholePixels(const Rect& rect) {
    const double left = std::floor(rect.minX() + half);
    const double bottom = std::floor(rect.minY() + half);
    return {left, bottom, std::ceil(rect.maxX() - half) - left,
            std::ceil(rect.maxY() - half) - bottom};
}

/// Where the middle of a line must lie for its edges to be on whole pixels.
double alignedMiddle(double middle, double width) {
    return std::round(middle - width / 2) + width / 2;
}

} // namespace

Point ScaledCanvas::scaled(Point point) const {
    return {point.x * scale_, point.y * scale_};
}

Rect ScaledCanvas::scaled(const Rect& rect) const {
    return {rect.x * scale_, rect.y * scale_, rect.width * scale_, rect.height * scale_};
}

Font ScaledCanvas::scaled(const Font& font) const {
    return {font.family, font.size * scale_, font.weight};
}

double ScaledCanvas::wholePixels(double points) const {
    return std::max(std::round(points * scale_), 1.0);
}

Rect ScaledCanvas::circle(const Rect& rect) const {
    const Rect place = scaled(rect);
    const double width = wholePixels(rect.width);
    const double height = wholePixels(rect.height);
    return {std::floor(place.midX() - width / 2 + half),
            std::floor(place.midY() - height / 2 + half), width, height};
}

void ScaledCanvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    pixels_.fillRoundedRect(onWholePixels(scaled(rect)), radius * scale_, color);
}

void ScaledCanvas::strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                     double lineWidth) {
    const double width = wholePixels(lineWidth);
    // What is thinner than a point lies within what it runs around.
    const double outwards = lineWidth < 1 ? 0 : lineWidth * scale_ / 2;
    const Rect outer = onWholePixels(inset(scaled(rect), -outwards, -outwards));
    const Rect line = inset(outer, width / 2, width / 2);
    if (!line.isNull()) {
        pixels_.strokeRoundedRect(line, std::max(radius * scale_ + outwards - width / 2, 0.0),
                                  color, width);
    }
}

void ScaledCanvas::fillEllipse(const Rect& rect, const Color& color) {
    pixels_.fillEllipse(circle(rect), color);
}

void ScaledCanvas::strokeEllipse(const Rect& rect, const Color& color, double lineWidth) {
    pixels_.strokeEllipse(circle(rect), color, wholePixels(lineWidth));
}

void ScaledCanvas::strokeLine(Point a, Point b, const Color& color, double lineWidth,
                              std::span<const double> dash) {
    const double width = wholePixels(lineWidth);
    Point from = scaled(a);
    Point to = scaled(b);
    if (a.y == b.y) {
        from.y = to.y = alignedMiddle(from.y, width);
    } else if (a.x == b.x) {
        from.x = to.x = alignedMiddle(from.x, width);
    }
    std::vector<double> lengths;
    std::ranges::transform(dash, std::back_inserter(lengths),
                           [this](double points) { return wholePixels(points); });
    pixels_.strokeLine(from, to, color, width, lengths);
}

Size ScaledCanvas::measure(std::string_view text, const Font& font) const {
    const Size size = pixels_.measure(text, scaled(font));
    return {size.width / scale_, size.height / scale_};
}

void ScaledCanvas::drawText(std::string_view text, Point lowerLeft, const Font& font,
                            const Color& color) {
    pixels_.drawText(text, scaled(lowerLeft), scaled(font), color);
}

} // namespace lumetry
