#include "inspected_desktop.h"

#include "rig/desktop_windows.h"
#include "rig/lumetry_settings.h"

#include <array>
#include <cmath>
#include <sstream>
#include <utility>

namespace lumetry::desktop {
namespace {

struct Pixel {
    int x = 0;
    int y = 0;
};

/// The accent over whatever is below, at the strength of an outline and not of its faint inside.
bool isAccent(const Bitmap& screen, Pixel at) {
    constexpr int leastPinkness = 80;
    const std::uint32_t pixel = screen.at(at.x, at.y);
    const auto red = static_cast<int>((pixel >> 16U) & 0xFFU);
    const auto green = static_cast<int>((pixel >> 8U) & 0xFFU);
    return red - green >= leastPinkness;
}

} // namespace

InspectedDesktop::InspectedDesktop(const DesktopOptions& options) : desktop(options) {}

ChildProcess InspectedDesktop::startWidgetFactory(const Environment& variables) {
    auto application = desktop.start({"gtk3-widget-factory"}, variables);
    const auto window = waitForWindow(desktop.server(), hasClass("Gtk3-widget-factory"));
    placeWindow(desktop.server(), window.id, {0, 0, window.bounds.width, window.bounds.height});
    [[maybe_unused]] const auto shown =
        tree.waitFor("gtk3-widget-factory", "check box", "checkbutton");
    return application;
}

ChildProcess InspectedDesktop::startLumetry() {
    markOnboarded(desktop);
    auto lumetry = desktop.start({LUMETRY_PROGRAM});
    requireUntil("the overlay", [&] { return !lumetry.running() || overlay.texts().has_value(); });
    if (!lumetry.running()) {
        throw std::runtime_error("lumetry ended at once: " + lumetry.standardError());
    }
    return lumetry;
}

OverlayReadout InspectedDesktop::hover(const Accessible& element, const std::string& header) {
    std::optional<Rect> place;
    // Applications may still move what they have just shown.
    const auto follow = [&] {
        const auto now = element.extents();
        if (now && now != place) {
            place = now;
            desktop.input().glidePointer(static_cast<int>(now->midX()),
                                         static_cast<int>(now->midY()));
        }
    };
    follow();
    if (!place) {
        throw std::runtime_error("the element has no place on screen");
    }
    return overlay.waitFor(header, [&](const OverlayReadout& shown) {
        if (shown.header == header) {
            return true;
        }
        follow();
        return false;
    });
}

std::string outlineProblem(const Bitmap& screen, const Rect& element) {
    constexpr int clearance = 4;
    const auto left = static_cast<int>(element.minX());
    const auto right = static_cast<int>(element.maxX());
    const auto top = static_cast<int>(element.minY());
    const auto bottom = static_cast<int>(element.maxY());
    // A quarter along each side, away from the handles on its ends.
    const int x = left + static_cast<int>(element.width) / 4;
    const int y = top + static_cast<int>(element.height) / 4;
    struct Side {
        const char* name;
        Pixel onLine;
        Pixel outward;
    };
    const std::array<Side, 4> sides = {{{"left", {left, y}, {-1, 0}},
                                        {"right", {right - 1, y}, {1, 0}},
                                        {"top", {x, top}, {0, -1}},
                                        {"bottom", {x, bottom - 1}, {0, 1}}}};
    std::ostringstream problem;
    for (const auto& [name, line, outward] : sides) {
        const auto at = [&, line = line, outward = outward](int distance) {
            return Pixel{line.x + distance * outward.x, line.y + distance * outward.y};
        };
        if (!isAccent(screen, at(0))) {
            problem << "no line on the " << name << "; ";
        }
        if (isAccent(screen, at(clearance)) || isAccent(screen, at(-clearance))) {
            problem << "a line beside the " << name << "; ";
        }
    }
    return problem.str();
}

std::string sizeText(const Rect& element) {
    std::ostringstream text;
    text << std::lround(element.width) << " × " << std::lround(element.height);
    return text.str();
}

} // namespace lumetry::desktop
