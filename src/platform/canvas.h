#pragma once

#include "base/color.h"
#include "base/geometry.h"

#include <span>
#include <string_view>

namespace lumetry {

enum class FontFamily { system, monospacedSystem };
enum class FontWeight { regular, medium, semibold, bold };

/// One of the platform's two system fonts at a size in points.
struct Font {
    FontFamily family = FontFamily::system;
    double size = 0;
    FontWeight weight = FontWeight::regular;

    friend bool operator==(const Font&, const Font&) = default;
};

/// What text takes up when it is set in one line.
class TextMetrics {
public:
    TextMetrics() = default;
    TextMetrics(const TextMetrics&) = delete;
    TextMetrics& operator=(const TextMetrics&) = delete;
    virtual ~TextMetrics() = default;

    /// The advance width of the text and the height of its line box, in points.
    [[nodiscard]] virtual Size measure(std::string_view text, const Font& font) const = 0;
    /// How far glyphs reach out of the line box on any side, in points: stacked accents, letters of
    /// fonts that step in.
    [[nodiscard]] virtual double overhang(std::string_view /*text*/, const Font& /*font*/) const {
        return 0;
    }
};

/// A surface to draw on. Coordinates are points in the view's space: origin at its lower-left
/// corner, y upwards. Later drawing covers earlier drawing.
class Canvas {
public:
    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    virtual ~Canvas() = default;

    virtual void fillRoundedRect(const Rect& rect, double radius, const Color& color) = 0;
    /// The line runs along the rectangle's edge, half of it on either side.
    virtual void strokeRoundedRect(const Rect& rect, double radius, const Color& color,
                                   double lineWidth) = 0;
    virtual void fillEllipse(const Rect& rect, const Color& color) = 0;
    virtual void strokeEllipse(const Rect& rect, const Color& color, double lineWidth) = 0;
    /// @param dash lengths on and off in turn, beginning at a; empty for an unbroken line
    virtual void strokeLine(Point a, Point b, const Color& color, double lineWidth,
                            std::span<const double> dash) = 0;
    [[nodiscard]] virtual Size measure(std::string_view text, const Font& font) const = 0;
    /// @param lowerLeft corner of the text's line box
    virtual void drawText(std::string_view text, Point lowerLeft, const Font& font,
                          const Color& color) = 0;
};

} // namespace lumetry
