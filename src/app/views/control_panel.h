#pragma once

#include "app/control_panel_window.h"

namespace lumetry {

/// The control panel in Qt's widgets, hidden. Needs a QApplication.
[[nodiscard]] std::unique_ptr<ControlPanelWindow> makeControlPanel(ControlPanelActions actions,
                                                                   const TemplateImage& icon);

} // namespace lumetry
