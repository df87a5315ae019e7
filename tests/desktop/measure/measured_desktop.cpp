#include "measured_desktop.h"

#include "rig/desktop_windows.h"

#include <cmath>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

constexpr const char* widgetFactory = "gtk3-widget-factory";

} // namespace

ChildProcess MeasuredDesktop::startWidgetFactory() {
    auto application = desktop.start({widgetFactory});
    const auto window = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    placeWindow(desktop.server(), window.id, {0, 0, window.bounds.width, window.bounds.height});
    static_cast<void>(element("check box", "checkbutton"));
    return application;
}

Accessible MeasuredDesktop::element(const std::string& role, const std::string& name) const {
    return AccessibleTree(desktop.accessibilityBusAddress()).waitFor(widgetFactory, role, name);
}

FinishedProgram MeasuredDesktop::measure(const std::vector<std::string>& arguments) const {
    ProcessOptions options;
    options.environment = desktop.environment();
    std::vector<std::string> command = {LUMETRY_MEASURE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command, options);
}

Json MeasuredDesktop::measureAt(Point at) const {
    auto command = arguments(at);
    command.insert(command.begin(), "--json");
    const auto finished = measure(command);
    return finished.status.code == 0 ? Json::parse(finished.output) : Json();
}

std::optional<std::string> rowValue(const Json& measured, const std::string& label) {
    if (!measured.is_object()) {
        return std::nullopt;
    }
    for (const Json& row : measured["rows"]) {
        if (row["label"] == label) {
            return row["value"].get<std::string>();
        }
    }
    return std::nullopt;
}

Point middleOf(const Accessible& element) {
    const auto extents = element.extents();
    if (!extents) {
        throw std::runtime_error("the element has no place on screen");
    }
    return {std::round(extents->midX()), std::round(extents->midY())};
}

std::vector<std::string> arguments(Point at) {
    return {std::to_string(std::lround(at.x)), std::to_string(std::lround(at.y))};
}

} // namespace lumetry::desktop
