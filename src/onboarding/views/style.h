#pragma once

#include "platform/canvas.h"

#include <QColor>
#include <QFont>

class QLabel;
class QString;
class QWidget;

namespace lumetry::views {

/// The colours of the onboarding.
[[nodiscard]] QColor pink(double alpha = 1);
[[nodiscard]] QColor whiteAt(double alpha);
[[nodiscard]] QColor background();
[[nodiscard]] QColor capFill();
[[nodiscard]] QColor systemGreen();
[[nodiscard]] QColor systemOrange();

/// A system font whose size is in the pixels of widgets, fractions included.
[[nodiscard]] QFont widgetFont(const Font& font);
[[nodiscard]] QFont systemFont(double size, FontWeight weight = FontWeight::regular);
[[nodiscard]] QFont monospacedFont(double size, FontWeight weight = FontWeight::regular);

/// A line of text, or as many as its breaks make.
[[nodiscard]] QLabel* makeLabel(const QString& text, const QFont& font, const QColor& color,
                                QWidget* parent);
/// Sets the label's letters closer together where it would be wider than that, in pixels.
void fitLabel(QLabel& label, int width);
void setLabelColor(QLabel& label, const QColor& color);

} // namespace lumetry::views
