#pragma once

#include "platform/template_image.h"

#include <QColor>
#include <QIcon>

class QPainter;

namespace lumetry {

/// Draws the image so that it fills the destination, which is in the painter's coordinates.
void paintTemplateImage(QPainter& painter, const TemplateImage& image, const QRectF& destination,
                        const QColor& color);

/// The image in one colour, drawn anew at every size that is asked for.
[[nodiscard]] QIcon templateIcon(const TemplateImage& image, const QColor& color);

} // namespace lumetry
