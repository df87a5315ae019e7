#pragma once

#include <vector>

class QWidget;

namespace lumetry::views {

/// How far above their places entering widgets begin, in pixels. Their parents have to leave them
/// that room, beyond which nothing of them is drawn.
inline constexpr int entranceDrop = 16;

/// Has the widgets fade in while they come down, one after another.
void playEntrance(const std::vector<QWidget*>& widgets);

void fadeIn(QWidget& widget, double seconds);
/// Fades a picture of the widget out in its place and deletes the widget.
void fadeOutAndDelete(QWidget* widget, double seconds);

} // namespace lumetry::views
