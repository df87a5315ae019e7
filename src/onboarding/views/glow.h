#pragma once

#include <QColor>
#include <QPixmap>

#include <functional>

class QPainter;

namespace lumetry::views {

/// How far a glow of that radius reaches, in pixels.
[[nodiscard]] int glowReach(double radius);

/// What the drawing throws around itself: its shape, blurred, in one colour.
/// @param size of the drawing; the glow is wider and higher by its reach on every side
/// @param radius of the blur, in pixels
[[nodiscard]] QPixmap makeGlow(const QSize& size, double radius, const QColor& color,
                               const std::function<void(QPainter&)>& draw);

} // namespace lumetry::views
