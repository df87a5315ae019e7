#pragma once

#include "platform/canvas.h"

#include <QColor>
#include <QFont>
#include <QStringList>

class QLabel;
class QPainter;
class QRectF;
class QWidget;

namespace lumetry::views {

/// The colours of the onboarding.
[[nodiscard]] QColor pink(double alpha = 1);
[[nodiscard]] QColor whiteAt(double alpha);
[[nodiscard]] QColor background();
[[nodiscard]] QColor capFill();
[[nodiscard]] QColor systemGreen();
[[nodiscard]] QColor systemOrange();

/// A rectangle with round corners.
struct Box {
    QColor fill;
    QColor border;           ///< within the rectangle; invalid: none
    double cornerRadius = 0; ///< of its outer edge, in pixels
    double borderWidth = 1;
};
void paintBox(QPainter& painter, const QRectF& rect, const Box& box);

/// A system font whose size is in the pixels of widgets, fractions included.
[[nodiscard]] QFont widgetFont(const Font& font);
[[nodiscard]] QFont systemFont(double size, FontWeight weight = FontWeight::regular);
[[nodiscard]] QFont monospacedFont(double size, FontWeight weight = FontWeight::regular);

/// A line of text, or as many as its breaks make.
[[nodiscard]] QLabel* makeLabel(const QString& text, const QFont& font, const QColor& color,
                                QWidget* parent);
/// The font with its letters closer together where one of the texts would be wider than that, in
/// pixels: texts that stand below each other are set alike.
[[nodiscard]] QFont fitFont(QFont font, const QStringList& texts, double width);
void setLabelColor(QLabel& label, const QColor& color);

} // namespace lumetry::views
