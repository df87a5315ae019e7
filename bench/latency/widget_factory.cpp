#include "widget_factory.h"

#include "support/real_desktop/desktop_windows.h"

namespace lumetry::latency {

using namespace desktop;

WidgetFactory::WidgetFactory(PrivateDesktop& desktop)
    : process_(desktop.start({name})), tree(desktop.accessibilityBusAddress()) {
    const auto found = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    window =
        placeWindow(desktop.server(), found.id, {0, 0, found.bounds.width, found.bounds.height})
            .bounds;
    (void)tree.waitFor(name, "check box", "checkbutton");
}

} // namespace lumetry::latency
