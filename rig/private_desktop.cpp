#include "rig/private_desktop.h"

#include "rig/bus.h"
#include "rig/monitors.h"
#include "rig/processes/process_table.h"
#include "rig/processes/wait_until.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace lumetry::desktop {
namespace {

constexpr const char* accessibilityLauncher = "/usr/libexec/at-spi-bus-launcher";
const BusObject busItself = {"org.freedesktop.DBus", "/org/freedesktop/DBus"};
const BusObject accessibilityStatus = {"org.a11y.Bus", "/org/a11y/bus"};

/// A bus that starts on demand only what a test puts into the folder "services", so that a desktop
/// holds what it was asked to hold and nothing that happens to be installed.
std::string sessionBusConfiguration(const std::filesystem::path& folder) {
    return R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=)" +
           (folder / "bus").string() + R"(</listen>
  <servicedir>)" +
           (folder / "services").string() + R"(</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";
}

Environment desktopEnvironment(const std::filesystem::path& folder) {
    const auto home = folder / "home";
    Environment environment = {
        {sessionVariable, folder.string()},
        {"HOME", home.string()},
        {"TMPDIR", (folder / "tmp").string()},
        {"XDG_RUNTIME_DIR", (folder / "run").string()},
        {"XDG_CONFIG_HOME", (home / ".config").string()},
        {"XDG_CACHE_HOME", (home / ".cache").string()},
        {"XDG_DATA_HOME", (home / ".local/share").string()},
        {"XDG_STATE_HOME", (home / ".local/state").string()},
        {"XDG_SESSION_TYPE", "x11"},
        {"XDG_CURRENT_DESKTOP", "X-Generic"},
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (folder / "bus").string()},
        {"LANG", "C.UTF-8"},
        {"GDK_BACKEND", "x11"},
        {"GSETTINGS_BACKEND", "memory"},
        {"GTK_THEME", "Adwaita"},
        {"QT_QPA_PLATFORM", "xcb"},
    };
    for (const char* inherited :
         {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(inherited)) {
            environment[inherited] = value;
        }
    }
    return environment;
}

/// Nothing moves by itself: no spinners, no blinking cursors, no transitions.
constexpr const char* gtkSettings = R"([Settings]
gtk-enable-animations=0
gtk-cursor-blink=0
)";

void makeHome(const Environment& environment) {
    for (const auto* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME",
                                 "XDG_STATE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        std::filesystem::create_directories(environment.at(variable));
    }
    std::filesystem::permissions(environment.at("XDG_RUNTIME_DIR"),
                                 std::filesystem::perms::owner_all);
    const auto gtkFolder = std::filesystem::path(environment.at("XDG_CONFIG_HOME")) / "gtk-3.0";
    std::filesystem::create_directories(gtkFolder);
    std::ofstream(gtkFolder / "settings.ini") << gtkSettings;
}

/// Waits for a program of the desktop to be ready, or to have failed.
template<class Condition>
void awaitService(ChildProcess& service, const std::string& sign, Condition&& condition) {
    requireUntil(sign, [&] {
        if (!service.running()) {
            throw std::runtime_error(service.name() +
                                     " ended while the desktop was started; it "
                                     "wrote: " +
                                     service.standardOutput() + service.standardError());
        }
        return condition();
    });
}

bool serviceRuns(GDBusConnection& bus, const std::string& name) {
    const auto answer = call(bus, busItself, busItself.name.c_str(), "NameHasOwner",
                             g_variant_new("(s)", name.c_str()));
    gboolean owned = FALSE;
    if (answer) {
        g_variant_get(answer.get(), "(b)", &owned);
    }
    return owned != FALSE;
}

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

PrivateDesktop::PrivateDesktop(const DesktopOptions& options)
    : environment_(desktopEnvironment(guard_.folder())) {
    makeHome(environment_);
    startServerAndBus(options);
    startManagers(options);
    if (options.accessibility != AccessibilityBus::none) {
        startAccessibility(options.accessibility == AccessibilityBus::enabled);
    }
    awaitManagers();
}

PrivateDesktop::~PrivateDesktop() {
    // While there still is a server to let the keys go.
    input_.reset();
    server_.reset();
    guard_.endDesktop();
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

    const auto configuration = guard_.folder() / "session.conf";
    std::ofstream(configuration) << sessionBusConfiguration(guard_.folder());
    auto address = makePipe();
    sessionBus_ = &startService({"dbus-daemon", "--nofork", "--nopidfile",
                                 "--config-file=" + configuration.string(),
                                 "--print-address=" + std::to_string(address.writeEnd.get())},
                                address.writeEnd.get());
    address.writeEnd.reset();

    display_ = ":" + readLine(number.readEnd.get(), generousDeadline);
    if (display_ == ":") {
        throw std::runtime_error("Xvfb did not start: " + server.standardError());
    }
    environment_["DISPLAY"] = display_;
    if (readLine(address.readEnd.get(), generousDeadline).empty()) {
        throw std::runtime_error("dbus-daemon did not start: " + sessionBus_->standardError());
    }
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

void PrivateDesktop::startAccessibility(bool enabled) {
    auto& launcher = startService({accessibilityLauncher, "--launch-immediately"});
    const auto session = connectToBus(sessionBusAddress());
    awaitService(launcher, "the accessibility bus",
                 [&] { return serviceRuns(*session, accessibilityStatus.name); });
    const auto answer = call(*session, accessibilityStatus, "org.a11y.Bus", "GetAddress");
    if (!answer) {
        throw std::runtime_error("the accessibility bus has no address");
    }
    const char* address = nullptr;
    g_variant_get(answer.get(), "(&s)", &address);
    accessibilityBusAddress_ = address;
    setAccessibilityEnabled(enabled);
    const auto bus = connectToBus(accessibilityBusAddress_);
    const auto started = call(*bus, busItself, busItself.name.c_str(), "StartServiceByName",
                              g_variant_new("(su)", "org.a11y.atspi.Registry", 0U));
    if (!started) {
        throw std::runtime_error("the registry of the accessibility bus does not start");
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

ChildProcess PrivateDesktop::start(const std::vector<std::string>& arguments,
                                   const Environment& variables) {
    ProcessOptions options;
    options.environment = environment_;
    for (const auto& [name, value] : variables) {
        options.environment[name] = value;
    }
    options.workingFolder = environment_.at("HOME");
    ChildProcess process(arguments, options);
    guard_.watch(process.pid());
    return process;
}

ChildProcess& PrivateDesktop::startService(const std::vector<std::string>& arguments,
                                           int inheritedDescriptor) {
    ProcessOptions options;
    options.environment = environment_;
    options.workingFolder = environment_.at("HOME");
    if (inheritedDescriptor >= 0) {
        options.inheritedDescriptors.push_back(inheritedDescriptor);
    }
    auto& service = services_.emplace_back(arguments, options);
    guard_.watch(service.pid());
    return service;
}

void PrivateDesktop::setAccessibilityEnabled(bool enabled) const {
    const auto session = connectToBus(sessionBusAddress());
    const auto answer =
        call(*session, accessibilityStatus, "org.freedesktop.DBus.Properties", "Set",
             g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled",
                           g_variant_new_boolean(enabled ? TRUE : FALSE)));
    if (!answer) {
        throw std::runtime_error("the accessibility bus does not let itself be switched");
    }
}

void PrivateDesktop::stopSessionBus() {
    sessionBus_->signal(SIGTERM);
    if (!sessionBus_->wait()) {
        throw std::runtime_error("the session bus does not end");
    }
}

void PrivateDesktop::stopServer() {
    xServer_->signal(SIGTERM);
    if (!xServer_->wait()) {
        throw std::runtime_error("the X server does not end");
    }
}

bool PrivateDesktop::accessibilityEnabled() const {
    const auto session = connectToBus(sessionBusAddress());
    const auto value = property(*session, accessibilityStatus, "org.a11y.Status", "IsEnabled");
    return value && g_variant_get_boolean(value.get()) != FALSE;
}

void PrivateDesktop::join() const {
    for (const auto& [name, value] : environment_) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace lumetry::desktop
