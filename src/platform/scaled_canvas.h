#pragma once

#include "platform/canvas.h"

namespace lumetry {

/// Draws what is given in points on a canvas that counts in device pixels. Lines and rims are as
/// many whole pixels wide as come nearest, and lie on whole ones; circles stay round.
class ScaledCanvas final : public Canvas {
public:
    /// @param scale pixels for each point
    ScaledCanvas(Canvas& pixels, double scale) : pixels_(pixels), scale_(scale) {}

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
    [[nodiscard]] Point scaled(Point point) const;
    [[nodiscard]] Rect scaled(const Rect& rect) const;
    [[nodiscard]] Font scaled(const Font& font) const;
    [[nodiscard]] double wholePixels(double points) const;
    [[nodiscard]] Rect circle(const Rect& rect) const;

    Canvas& pixels_;
    double scale_;
};

} // namespace lumetry
