#include "rig/private_desktop.h"

#include "rig/monitors.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

const Environment variables = {
    {"XDG_SESSION_TYPE", "x11"},
    {"XDG_CURRENT_DESKTOP", "X-Generic"},
    {"GDK_BACKEND", "x11"},
    {"QT_QPA_PLATFORM", "xcb"},
};

/// Returns once the window manager takes care of windows. It says that it is there some time before
/// that, and a window that is mapped in between stays unmapped for good.
void awaitManagedWindows(const XConnection& server) {
    constexpr auto patience = std::chrono::milliseconds(300);
    auto* const c = server.get();
    const auto isListed = [&](xcb_window_t window) {
        const auto listed = server.numbersProperty(server.root(), "_NET_CLIENT_LIST");
        return std::ranges::find(listed, window) != listed.end();
    };
    requireUntil("the window manager to manage a window", [&] {
        const xcb_window_t trial = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, trial, server.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(c, trial);
        server.sync();
        const bool managed = waitUntil([&] { return isListed(trial); }, patience);
        xcb_destroy_window(c, trial);
        server.sync();
        return managed && waitUntil([&] { return !isListed(trial); });
    });
}

} // namespace

void declareScale(const XConnection& server, double scale) {
    constexpr double dotsPerInch = 96;
    const std::string resources =
        "Xft.dpi:\t" + std::to_string(std::lround(scale * dotsPerInch)) + "\n";
    xcb_change_property(server.get(), XCB_PROP_MODE_REPLACE, server.root(),
                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(resources.size()), resources.data());
    server.sync();
}

PrivateDesktop::PrivateDesktop(const DesktopOptions& options) : DesktopSession(variables) {
    startServerAndBus(options);
    startManagers(options);
    startAccessibility(options.accessibility);
    awaitManagers();
}

PrivateDesktop::~PrivateDesktop() {
    // While there still is a server to let the keys go.
    input_.reset();
    server_.reset();
    endDesktop();
}

void PrivateDesktop::startServerAndBus(const DesktopOptions& options) {
    auto number = makePipe();
    std::vector<std::string> arguments = {"Xvfb",
                                          "-displayfd",
                                          std::to_string(number.writeEnd.get()),
                                          "-screen",
                                          "0",
                                          std::to_string(options.width) + 'x' +
                                              std::to_string(options.height) + 'x' +
                                              std::to_string(options.depth),
                                          "-dpi",
                                          "96",
                                          "-noreset",
                                          "-nolisten",
                                          "tcp"};
    arguments.insert(arguments.end(), options.serverArguments.begin(),
                     options.serverArguments.end());
    auto& server = startService(arguments, number.writeEnd.get());
    xServer_ = &server;
    number.writeEnd.reset();
    startSessionBus();
    display_ = ":" + readLine(number.readEnd.get(), generousDeadline);
    if (display_ == ":") {
        throw std::runtime_error("Xvfb did not start: " + server.standardError());
    }
    setVariable("DISPLAY", display_);
    server_.emplace(display_);
    input_.emplace(*server_);
    if (!options.screens.empty()) {
        arrangeMonitors(*server_, options.screens);
    }
    if (options.scale != 1) {
        declareScale(*server_, options.scale);
    }
}

void PrivateDesktop::startManagers(const DesktopOptions& options) {
    if (options.windowManager) {
        windowManager_ = &startService({"openbox"});
    }
    if (options.compositor) {
        compositor_ = &startService({"picom", "--backend", "xrender", "--config", "/dev/null"});
    }
}

void PrivateDesktop::awaitManagers() {
    if (windowManager_) {
        awaitService(*windowManager_, "the window manager", [&] {
            return !server_->numbersProperty(server_->root(), "_NET_SUPPORTING_WM_CHECK").empty();
        });
        awaitManagedWindows(*server_);
    }
    if (compositor_) {
        awaitService(*compositor_, "the compositing manager",
                     [&] { return server_->selectionOwner("_NET_WM_CM_S0") != XCB_NONE; });
    }
}

void PrivateDesktop::stopServer() {
    stopService(*xServer_);
}

} // namespace lumetry::desktop
