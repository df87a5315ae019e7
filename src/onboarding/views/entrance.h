#pragma once

#include <vector>

class QWidget;

namespace lumetry::views {

/// Has the widgets fade in while they rise, one after another.
/// @param fadeSeconds during which they fade in together besides; 0 for not at all
void playEntrance(const std::vector<QWidget*>& widgets, double fadeSeconds);

/// Fades a picture of the widget out in its place and deletes the widget.
void fadeOutAndDelete(QWidget* widget, double seconds);

} // namespace lumetry::views
