#include "probe/ax_access.h"

#include "platform/applications.h"
#include "platform/ax_value.h"
#include "platform/window_server.h"

#include <algorithm>
#include <cmath>

namespace lumetry {
namespace {

template<typename Kind>
std::optional<Kind> attribute(const AXUIElement& element, std::string_view name) {
    const auto value = element.copyAttributeValue(name);
    return value ? value->as<Kind>() : std::nullopt;
}

} // namespace

std::optional<std::string> axString(const AXUIElement& element, std::string_view name) {
    return attribute<std::string>(element, name);
}

std::optional<Rect> axFrame(const AXUIElement& element) {
    const auto position = element.copyAttributeValue("AXPosition");
    if (!position) {
        return std::nullopt;
    }
    const auto size = attribute<Size>(element, "AXSize");
    const auto origin = position->as<Point>();
    if (!origin || !size || !(size->width > 0 && size->height > 0)) {
        return std::nullopt;
    }
    return Rect{origin->x, origin->y, size->width, size->height};
}

std::optional<AXUIElement> axParent(const AXUIElement& element) {
    return attribute<AXUIElement>(element, "AXParent");
}

std::optional<std::vector<AXUIElement>> axChildren(const AXUIElement& element) {
    return attribute<std::vector<AXUIElement>>(element, "AXChildren");
}

std::string bundleID(Applications& applications, pid_t pid) {
    const auto application = applications.runningApplication(pid);
    return application && application->bundleIdentifier ? *application->bundleIdentifier
                                                        : "pid:" + std::to_string(pid);
}

double primaryDisplayHeight(WindowServer& windowServer) {
    const auto screens = windowServer.screens();
    const auto primary = std::ranges::find_if(screens, [](const Screen& screen) {
        return screen.frame.origin() == Point{0, 0};
    });
    if (primary != screens.end()) {
        return primary->frame.height;
    }
    return screens.empty() ? 0 : screens.front().frame.height;
}

double frameRounding(WindowServer& windowServer) {
    constexpr double largestError = 1e-6; // of the sums
    const auto screens = windowServer.screens();
    const double scale = screens.empty() ? 1 : screens.front().backingScaleFactor;
    return scale == std::floor(scale) ? 0 : 1 / scale + largestError;
}

} // namespace lumetry
