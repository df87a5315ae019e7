#include "tour.h"

#include "pointer_picture.h"
#include "support/processes/wait_until.h"
#include "support/real_desktop/desktop_windows.h"
#include "support/real_desktop/screenshot.h"

#include <X11/keysym.h>

#include <array>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace lumetry::desktop {
namespace {

constexpr const char* application = "gtk3-widget-factory";
/// The application is wider than 1366 pixels; glances need room beside it.
constexpr int screenWidth = 1440;
constexpr int screenHeight = 900;

const Stop button = {"push-button", "push button", "link button"};
const Stop entry = {"entry", "text", ""};
const Stop checkBox = {"check-box", "check box", "checkbutton"};
const Stop list = {"list", "table", ""};
const Stop tab = {"tab", "radio button", "Page 2"};

DesktopOptions tourDesktop() {
    DesktopOptions options;
    options.width = screenWidth;
    options.height = screenHeight;
    return options;
}

bool fits(const Accessible& element, const Stop& stop) {
    return element.role() == stop.role && (stop.name.empty() || element.name() == stop.name) &&
           element.is(AccessibleState::showing) && element.is(AccessibleState::sensitive);
}

bool isGlance(const OverlayReadout& readout) {
    return !readout.header.empty();
}

bool isDistance(const OverlayReadout& readout) {
    return !readout.distances.empty();
}

} // namespace

Tour::Tour(const std::filesystem::path& lumetry, std::filesystem::path pictures)
    : desktop_(tourDesktop()), pictures_(std::move(pictures)),
      application_(desktop_.start({application})), overlay_(desktop_.server()) {
    const auto window = waitForWindow(desktop_.server(), hasClass("Gtk3-widget-factory"));
    placeWindow(desktop_.server(), window.id, {24, 80, window.bounds.width, window.bounds.height});
    const AccessibleTree tree(desktop_.accessibilityBusAddress());
    tree_ = tree.waitForApplication(application);
    lumetry_ = desktop_.start({lumetry.string()});
    requireUntil("Lumetry's overlay", [this] {
        requireLumetry();
        return overlay_.texts().has_value();
    });
}

void Tour::run() {
    hover(button);
    hover(entry);
    hover(checkBox);
    hover(list);
    hover(tab);
    measure(entry, list);
    leave();
}

void Tour::hover(const Stop& stop) {
    moveTo(stop);
    takePicture(stop.picture, awaitReadout("the glance", isGlance).line());
}

void Tour::measure(const Stop& from, const Stop& to) {
    moveTo(from);
    [[maybe_unused]] const auto pinned = awaitReadout("the glance", isGlance);
    desktop_.input().pressKey(XK_Alt_L);
    moveTo(to);
    takePicture("distance", awaitReadout("a distance", isDistance).line());
    desktop_.input().releaseKey(XK_Alt_L);
}

void Tour::leave() {
    desktop_.input().typeKey(XK_Escape);
    const auto status = lumetry_->wait();
    if (!status || status->code != 0) {
        throw std::runtime_error("Lumetry did not leave after Escape");
    }
    takePicture("escape", "Lumetry has left");
}

void Tour::moveTo(const Stop& stop) {
    const auto element =
        tree_->find([&](const Accessible& candidate) { return fits(candidate, stop); });
    const auto place = element ? element->extents() : std::nullopt;
    if (!place) {
        throw std::runtime_error(std::string(application) + " has no " + stop.role + " \"" +
                                 stop.name + "\" in sight");
    }
    constexpr int steps = 20;
    desktop_.input().glidePointer(static_cast<int>(place->midX()), static_cast<int>(place->midY()),
                                  steps);
}

OverlayReadout Tour::awaitReadout(const std::string& what,
                                  const std::function<bool(const OverlayReadout&)>& wanted) {
    // On its way the pointer crosses other elements: what stays is what it has come to rest on.
    constexpr auto rest = std::chrono::milliseconds(400);
    std::optional<OverlayReadout> last;
    auto since = std::chrono::steady_clock::now();
    requireUntil(what, [&] {
        requireLumetry();
        const auto now = std::chrono::steady_clock::now();
        auto readout = overlay_.readout();
        if (readout != last) {
            last = std::move(readout);
            since = now;
        }
        return last && *last != shown_ && wanted(*last) && now - since >= rest;
    });
    shown_ = *last;
    return shown_;
}

void Tour::requireLumetry() {
    if (!lumetry_->running()) {
        throw std::runtime_error("Lumetry ended by itself: " + lumetry_->standardError());
    }
}

void Tour::takePicture(const std::string& name, const std::string& line) {
    std::ostringstream file;
    file << std::setw(2) << std::setfill('0') << ++pictureCount_ << '-' << name << ".png";
    const auto path = pictures_ / file.str();
    auto picture = screenshot(desktop_.server());
    drawPointer(desktop_.server(), picture);
    writePng(picture, path);
    std::cout << path.string() << "  " << line << std::endl;
}

} // namespace lumetry::desktop
