#include "rig/kwin_desktop.h"

#include "rig/bus.h"
#include "rig/kwin_screenshot.h"
#include "rig/processes/programs.h"
#include "rig/processes/wait_until.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr const char* compositorProgram = "kwin_wayland";
constexpr const char* socketName = "wayland-0";

const Environment variables = {
    {"XDG_SESSION_TYPE", "wayland"}, {"XDG_CURRENT_DESKTOP", "KDE"}, {"KDE_FULL_SESSION", "true"},
    {"WAYLAND_DISPLAY", socketName}, {"GDK_BACKEND", "wayland"},     {"MOZ_ENABLE_WAYLAND", "1"},
    {"LIBGL_ALWAYS_SOFTWARE", "1"},
};

/// Windows come and go at once.
constexpr const char* kdeSettings = R"([KDE]
AnimationDurationFactor=0
)";

std::vector<std::string> commandLine(const std::string& program, const KwinOptions& options) {
    std::vector<std::string> command = {program,           "--virtual",
                                        "--width",         std::to_string(options.width),
                                        "--height",        std::to_string(options.height),
                                        "--output-count",  std::to_string(options.outputs),
                                        "--scale",         std::to_string(options.scale),
                                        "--no-lockscreen", "--socket",
                                        socketName};
    if (options.xwayland) {
        command.emplace_back("--xwayland");
    }
    return command;
}

} // namespace

std::optional<std::string> KwinDesktop::problem() {
    if (!findProgram(compositorProgram)) {
        return "KWin is not installed; it comes with the Debian package kwin-wayland";
    }
    return std::nullopt;
}

KwinDesktop::KwinDesktop(const KwinOptions& options)
    : DesktopSession(variables), options_(options) {
    std::ofstream(std::filesystem::path(environment().at("XDG_CONFIG_HOME")) / "kdeglobals")
        << kdeSettings;
    permit(std::filesystem::read_symlink("/proc/self/exe"));
    startSessionBus();
    startCompositor();
    startAccessibility(options.accessibility);
    input_.emplace(socket());
}

KwinDesktop::~KwinDesktop() {
    // While there still is a compositor to let the keys go.
    input_.reset();
    endDesktop();
}

std::string KwinDesktop::socket() const {
    return environment().at("XDG_RUNTIME_DIR") + '/' + socketName;
}

void KwinDesktop::startCompositor() {
    // A copy has none of the capabilities that the installed file asks for, and that a container
    // refuses.
    const auto program = folder() / compositorProgram;
    std::filesystem::copy_file(requireProgram(compositorProgram), program,
                               std::filesystem::copy_options::skip_existing);
    // What KWin starts itself finds the X server's name in its environment.
    const auto startedWith = folder() / "variables";
    std::filesystem::remove(startedWith);
    const std::string note = "sh -c 'env > " + startedWith.string() + ".part && mv " +
                             startedWith.string() + ".part " + startedWith.string() + "'";
    auto command = commandLine(program.string(), options_);
    command.push_back(note);
    compositor_ = &startService(command);
    const auto session = connectToBus(sessionBusAddress());
    awaitService(*compositor_, "KWin", [&] {
        return std::filesystem::exists(startedWith) &&
               isOnBus(*session, "org.kde.KWin.ScreenShot2");
    });
    if (options_.xwayland) {
        adoptVariables(startedWith);
    }
}

void KwinDesktop::adoptVariables(const std::filesystem::path& file) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        for (const std::string name : {"DISPLAY", "XAUTHORITY"}) {
            if (line.starts_with(name + '=')) {
                setVariable(name, line.substr(name.size() + 1));
            }
        }
    }
}

Bitmap KwinDesktop::screenshot(std::size_t output) const {
    return kwinScreenshot(sessionBusAddress(), "Virtual-" + std::to_string(output));
}

void KwinDesktop::permit(const std::filesystem::path& program) {
    const auto applications =
        std::filesystem::path(environment().at("XDG_DATA_HOME")) / "applications";
    std::filesystem::create_directories(applications);
    std::ofstream(applications / ("permitted-" + std::to_string(permitted_++) + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << program.filename().string()
        << "\nExec=" << program.string()
        << "\nX-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2"
           "\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input,org_kde_kwin_keystate,"
           "org_kde_plasma_window_management\n";
}

void KwinDesktop::stopCompositor() {
    stopService(*compositor_);
}

void KwinDesktop::restartCompositor() {
    input_.reset();
    compositor_->signal(SIGKILL);
    if (!compositor_->wait()) {
        throw std::runtime_error("KWin does not end");
    }
    startCompositor();
    input_.emplace(socket());
}

} // namespace lumetry::desktop
