#include "platform/native/linux_desktop.h"

#include "platform/linux/lock/lock_services.h"
#include "platform/linux/loop/idle_loop.h"
#include "platform/linux/plasma/desktop.h"
#include "platform/linux/windows/root_space.h"
#include "platform/native/resumption.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

namespace lumetry {
namespace {

/// Only fonts, drawing and a few small windows are wanted of Qt: without this it would load a
/// graphics driver.
void keepQtSmall() {
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    setenv("QT_XCB_GL_INTEGRATION", "none", 0);
}

/// Device pixels for each point, if the user wants others than the desktop declares.
std::optional<double> chosenScale(const QtDefaults& defaults) {
    const auto scale = defaults.numberForKey("lumetry.scale");
    return scale ? usableScale(*scale) : std::nullopt;
}

/// Has Qt's windows drawn at that scale. It has to be known before Qt's application object is made.
void scaleQt(double scale) {
    constexpr double dotsPerInch = 96;
    const auto dots = static_cast<int>(std::lround(scale * dotsPerInch));
    setenv("QT_FONT_DPI", std::to_string(dots).c_str(), 1);
}

} // namespace

LinuxDesktop::LinuxDesktop(const ApplicationMaker& makeApplication)
    : application_(makeApplication()) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

LinuxDesktop::~LinuxDesktop() {
    if (x11_ == nullptr) {
        // At its end Qt 6.4 may wait for its Wayland connection's thread, and that one for a word
        // from the compositor that never comes: the process's end does as well.
        static_cast<void>(application_.release());
    }
}

std::unique_ptr<LinuxDesktop> LinuxDesktop::open(const ApplicationMaker& makeApplication,
                                                 bool hasWindows, std::string& problem) {
    // That a display server or a bus has gone shows by what fails, and is not to end the process.
    std::signal(SIGPIPE, SIG_IGN);
    if (PlasmaDesktop::isPresent()) {
        if (hasWindows) {
            setenv("QT_QPA_PLATFORM", "wayland;offscreen", 0);
        } else {
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
        }
        std::unique_ptr<LinuxDesktop> desktop(new LinuxDesktop(makeApplication));
        if (!desktop->connectToPlasma(problem)) {
            return nullptr;
        }
        if (hasWindows) {
            desktop->outliveCompositor();
        }
        return desktop;
    }
    // Qt ends the process without a display, so that this has to be known before. A server that
    // nobody else is connected to may begin anew once the last one leaves: until Qt is there, this
    // connection stays.
    IdleLoop idleLoop;
    const auto first = X11Desktop::open(idleLoop, idleLoop, problem);
    if (!first) {
        return nullptr;
    }
    keepQtSmall();
    if (const auto scale = chosenScale(QtDefaults())) {
        scaleQt(*scale);
    }
    std::unique_ptr<LinuxDesktop> desktop(new LinuxDesktop(makeApplication));
    return desktop->connectToX11(problem) ? std::move(desktop) : nullptr;
}

bool LinuxDesktop::connectToX11(std::string& problem) {
    auto x11 = X11Desktop::open(loop_, loop_, problem, chosenScale(defaults_));
    if (!x11) {
        return false;
    }
    x11_ = x11.get();
    display_ = std::move(x11);
    display_->onConnectionLost([this] {
        std::cerr << "lumetry: the X server closed the connection; start Lumetry again on a "
                     "running display\n";
        quit(EXIT_FAILURE);
    });
    putTogether();
    return true;
}

bool LinuxDesktop::connectToPlasma(std::string& problem) {
    display_ = PlasmaDesktop::open(loop_, loop_, problem);
    if (!display_) {
        return false;
    }
    display_->onConnectionLost([this] { quitWithoutCompositor(); });
    putTogether();
    return true;
}

void LinuxDesktop::quitWithoutCompositor() {
    std::cerr << "lumetry: the Wayland compositor closed the connection; start Lumetry again in a "
                 "running session\n";
    quit(EXIT_FAILURE);
}

/// Qt ends a process that has windows as soon as it finds its own connection lost, with a warning
/// before: whichever connection shows it first, it is then that this process begins anew.
void LinuxDesktop::outliveCompositor() {
    static LinuxDesktop* desktop = nullptr;
    static QtMessageHandler printMessage = nullptr;
    desktop = this;
    display_->onConnectionLost([this] {
        beginAnewOnceBack(terminationSignals_);
        quitWithoutCompositor();
    });
    printMessage = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (printMessage != nullptr) {
                printMessage(type, context, text);
            }
            if (text.startsWith(QLatin1String("The Wayland connection "))) {
                beginAnewOnceBack(desktop->terminationSignals_);
            }
        });
}

void LinuxDesktop::putTogether() {
    applications_.emplace(display_->desktopWindows());
    accessibility_.emplace(display_->desktopWindows(), loop_);
    screenLock_.emplace(loop_, [this] {
        LinuxScreenLock::Watches watches;
        if (auto watch = display_->watchLock()) {
            watches.push_back(std::move(watch));
        }
        watches.push_back(watchLockServices(loop_));
        return watches;
    });
    eventMonitors_.emplace(display_->eventMonitors(), loop_);
    platform_.emplace(Platform{*accessibility_, display_->windowServer(), display_->pointer(),
                               *eventMonitors_, *applications_, fileSystem_, loop_, defaults_,
                               display_->overlayWindows(rasterizer_), display_->screenCapture(),
                               *screenLock_});
}

int LinuxDesktop::run() {
    const Token termination = terminationSignals_.watch(loop_, [this] { quit(EXIT_SUCCESS); });
    return QGuiApplication::exec();
}

RoundTrips LinuxDesktop::roundTrips() const {
    return {accessibility_->requests(), accessibility_->waits(), display_->roundTrips()};
}

std::unique_ptr<NativeDesktop> NativeDesktop::open(int& argc, char** argv, std::string& problem) {
    return LinuxDesktop::open([&] { return std::make_unique<QGuiApplication>(argc, argv); }, false,
                              problem);
}

} // namespace lumetry
