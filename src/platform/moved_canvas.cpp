#include "platform/moved_canvas.h"

namespace lumetry {

void MovedCanvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    canvas_.fillRoundedRect(moved(rect), radius, color);
}

void MovedCanvas::strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                    double lineWidth) {
    canvas_.strokeRoundedRect(moved(rect), radius, color, lineWidth);
}

void MovedCanvas::fillEllipse(const Rect& rect, const Color& color) {
    canvas_.fillEllipse(moved(rect), color);
}

void MovedCanvas::strokeEllipse(const Rect& rect, const Color& color, double lineWidth) {
    canvas_.strokeEllipse(moved(rect), color, lineWidth);
}

void MovedCanvas::strokeLine(Point a, Point b, const Color& color, double lineWidth,
                             std::span<const double> dash) {
    canvas_.strokeLine(moved(a), moved(b), color, lineWidth, dash);
}

Size MovedCanvas::measure(std::string_view text, const Font& font) const {
    return canvas_.measure(text, font);
}

void MovedCanvas::drawText(std::string_view text, Point lowerLeft, const Font& font,
                           const Color& color) {
    canvas_.drawText(text, moved(lowerLeft), font, color);
}

} // namespace lumetry
