#pragma once

#include "platform/canvas.h"

namespace lumetry {

/// Draws everything somewhere else on another canvas.
class MovedCanvas final : public Canvas {
public:
    /// @param offset where the origin comes to lie there
    MovedCanvas(Canvas& canvas, Point offset) : canvas_(canvas), offset_(offset) {}

    void fillRoundedRect(const Rect& rect, double radius, const Color& color) override;
    void strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                           double lineWidth) override;
    void fillEllipse(const Rect& rect, const Color& color) override;
    void strokeEllipse(const Rect& rect, const Color& color, double lineWidth) override;
    void strokeLine(Point a, Point b, const Color& color, double lineWidth,
                    std::span<const double> dash) override;
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override;
    void drawText(std::string_view text, Point lowerLeft, const Font& font,
                  const Color& color) override;

private:
    [[nodiscard]] Point moved(Point point) const {
        return {point.x + offset_.x, point.y + offset_.y};
    }
    [[nodiscard]] Rect moved(const Rect& rect) const {
        return {rect.x + offset_.x, rect.y + offset_.y, rect.width, rect.height};
    }

    Canvas& canvas_;
    Point offset_;
};

} // namespace lumetry
