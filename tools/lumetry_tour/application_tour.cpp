#include "inspection.h"

#include "rig/desktop_windows.h"

#include <stdexcept>

namespace lumetry::desktop {
namespace {

constexpr const char* application = "gtk3-widget-factory";

/// The first element of that role and name that is shown and not greyed out.
Rect find(const Accessible& tree, const std::string& role, const std::string& name) {
    const auto element = tree.find([&](const Accessible& candidate) {
        return candidate.role() == role && (name.empty() || candidate.name() == name) &&
               candidate.is(AccessibleState::showing) && candidate.is(AccessibleState::sensitive);
    });
    const auto place = element ? element->extents() : std::nullopt;
    if (!place) {
        throw std::runtime_error(std::string(application) + " has no " + role + " \"" + name +
                                 "\" in sight");
    }
    return *place;
}

/// The application is wider than 1366 pixels; glances need room beside it.
DesktopOptions roomyDesktop() {
    DesktopOptions options;
    options.width = 1440;
    options.height = 900;
    return options;
}

} // namespace

void tourApplication(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(roomyDesktop());
    const auto process = desktop.start({application});
    const auto window = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    placeWindow(desktop.server(), window.id, {24, 80, window.bounds.width, window.bounds.height});
    const auto tree =
        AccessibleTree(desktop.accessibilityBusAddress()).waitForApplication(application);

    Inspection inspection(desktop, lumetry, album);
    const Rect entry = find(tree, "text", "");
    const Rect list = find(tree, "table", "");
    inspection.hover(find(tree, "push button", "link button"), "push-button");
    inspection.hover(entry, "entry");
    inspection.hover(find(tree, "check box", "checkbutton"), "check-box");
    inspection.hover(list, "list");
    inspection.hover(find(tree, "radio button", "Page 2"), "tab");
    inspection.measure(entry, list, "distance");
    inspection.leave("escape");
}

} // namespace lumetry::desktop
