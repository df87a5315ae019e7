#include "rig/desktop_session.h"

#include "rig/bus.h"
#include "rig/processes/process_table.h"

#include <csignal>
#include <cstdlib>
#include <fstream>

namespace lumetry::desktop {
namespace {

constexpr const char* accessibilityLauncher = "/usr/libexec/at-spi-bus-launcher";
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

Environment sessionEnvironment(const std::filesystem::path& folder, const Environment& variables) {
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
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (folder / "bus").string()},
        {"LANG", "C.UTF-8"},
        {"GSETTINGS_BACKEND", "memory"},
        {"GTK_THEME", "Adwaita"},
    };
    for (const char* inherited :
         {"PATH", "LD_LIBRARY_PATH", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (const char* value = std::getenv(inherited)) {
            environment[inherited] = value;
        }
    }
    for (const auto& [name, value] : variables) {
        environment[name] = value;
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

} // namespace

void stopService(ChildProcess& service) {
    service.signal(SIGTERM);
    if (!service.wait()) {
        throw std::runtime_error(service.name() + " does not end");
    }
}

DesktopSession::DesktopSession(const Environment& variables)
    : environment_(sessionEnvironment(guard_.folder(), variables)) {
    makeHome(environment_);
}

DesktopSession::~DesktopSession() {
    guard_.endDesktop();
}

void DesktopSession::startSessionBus() {
    const auto configuration = guard_.folder() / "session.conf";
    std::ofstream(configuration) << sessionBusConfiguration(guard_.folder());
    auto address = makePipe();
    sessionBus_ = &startService({"dbus-daemon", "--nofork", "--nopidfile",
                                 "--config-file=" + configuration.string(),
                                 "--print-address=" + std::to_string(address.writeEnd.get())},
                                address.writeEnd.get());
    address.writeEnd.reset();
    if (readLine(address.readEnd.get(), generousDeadline).empty()) {
        throw std::runtime_error("dbus-daemon did not start: " + sessionBus_->standardError());
    }
}

void DesktopSession::startAccessibility(AccessibilityBus kind) {
    if (kind == AccessibilityBus::none) {
        return;
    }
    auto& launcher = startService({accessibilityLauncher, "--launch-immediately"});
    const auto session = connectToBus(sessionBusAddress());
    awaitService(launcher, "the accessibility bus",
                 [&] { return isOnBus(*session, accessibilityStatus.name); });
    const auto answer = call(*session, accessibilityStatus, "org.a11y.Bus", "GetAddress");
    if (!answer) {
        throw std::runtime_error("the accessibility bus has no address");
    }
    const char* address = nullptr;
    g_variant_get(answer.get(), "(&s)", &address);
    accessibilityBusAddress_ = address;
    setAccessibilityEnabled(kind == AccessibilityBus::enabled);
    const auto bus = connectToBus(accessibilityBusAddress_);
    const auto started = call(*bus, busItself, busItself.name.c_str(), "StartServiceByName",
                              g_variant_new("(su)", "org.a11y.atspi.Registry", 0U));
    if (!started) {
        throw std::runtime_error("the registry of the accessibility bus does not start");
    }
}

ChildProcess DesktopSession::start(const std::vector<std::string>& arguments,
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

ChildProcess& DesktopSession::startService(const std::vector<std::string>& arguments,
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

void DesktopSession::setAccessibilityEnabled(bool enabled) const {
    const auto session = connectToBus(sessionBusAddress());
    const auto answer =
        call(*session, accessibilityStatus, "org.freedesktop.DBus.Properties", "Set",
             g_variant_new("(ssv)", "org.a11y.Status", "IsEnabled",
                           g_variant_new_boolean(enabled ? TRUE : FALSE)));
    if (!answer) {
        throw std::runtime_error("the accessibility bus does not let itself be switched");
    }
}

bool DesktopSession::accessibilityEnabled() const {
    const auto session = connectToBus(sessionBusAddress());
    const auto value = property(*session, accessibilityStatus, "org.a11y.Status", "IsEnabled");
    return value && g_variant_get_boolean(value.get()) != FALSE;
}

void DesktopSession::stopSessionBus() {
    stopService(*sessionBus_);
}

void DesktopSession::join() const {
    for (const auto& [name, value] : environment_) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace lumetry::desktop
