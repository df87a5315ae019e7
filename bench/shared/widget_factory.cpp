#include "bench/shared/widget_factory.h"

#include "rig/desktop_windows.h"

#include <string>

namespace lumetry::bench {

using namespace desktop;

namespace {

/// GTK's fonts follow the desktop's scale besides, which is not to count twice.
Environment environmentAt(int scale) {
    return {{"GDK_SCALE", std::to_string(scale)}, {"GDK_DPI_SCALE", std::to_string(1.0 / scale)}};
}

} // namespace

WidgetFactory::WidgetFactory(PrivateDesktop& desktop, int scale)
    : process_(desktop.start({name}, environmentAt(scale))),
      tree(desktop.accessibilityBusAddress()) {
    const auto found = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    window =
        placeWindow(desktop.server(), found.id, {0, 0, found.bounds.width, found.bounds.height})
            .bounds;
    (void)tree.waitFor(name, "check box", "checkbutton");
}

} // namespace lumetry::bench
