#pragma once

class QWidget;

namespace lumetry::views {

/// Puts the window with its frame in the middle of the screen, also when it is not shown yet and
/// nobody knows what frame it will get.
void centerOnScreen(QWidget& window);

} // namespace lumetry::views
