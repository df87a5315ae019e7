#include "platform/native/native_desktop.h"

#include "platform/linux/atspi/atspi_accessibility.h"
#include "platform/linux/idle_loop.h"
#include "platform/linux/linux_applications.h"
#include "platform/linux/linux_file_system.h"
#include "platform/linux/x11/x11_desktop.h"
#include "platform/native/termination_signals.h"
#include "platform/qt/painter_rasterizer.h"
#include "platform/qt/qt_defaults.h"
#include "platform/qt/qt_run_loop.h"

#include <QGuiApplication>

#include <cstdlib>
#include <iostream>

namespace lumetry {
namespace {

/// Why there is no display to work on; empty when there is one. Qt ends the process without one, so
/// that this has to be known before.
std::string displayProblem() {
    IdleLoop loop;
    std::string problem;
    const auto desktop = X11Desktop::open(loop, loop, problem);
    return problem;
}

/// Only fonts and drawing are wanted of Qt: without this it would load a graphics driver.
void keepQtSmall() {
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    setenv("QT_XCB_GL_INTEGRATION", "none", 0);
}

class LinuxDesktop final : public NativeDesktop {
public:
    LinuxDesktop(int& argc, char** argv) : application_(argc, argv) {
        QGuiApplication::setQuitOnLastWindowClosed(false);
    }

    [[nodiscard]] bool connect(std::string& problem) {
        x11_ = X11Desktop::open(loop_, loop_, problem);
        if (!x11_) {
            return false;
        }
        x11_->onConnectionLost([this] {
            std::cerr << "lumetry: the X server closed the connection; start Lumetry again on a "
                         "running display\n";
            quit(EXIT_FAILURE);
        });
        applications_.emplace(x11_->desktopWindows());
        accessibility_.emplace(x11_->desktopWindows(), loop_);
        platform_.emplace(Platform{*accessibility_, x11_->windowServer(), x11_->pointer(),
                                   x11_->eventMonitors(), *applications_, fileSystem_, loop_,
                                   defaults_, x11_->overlayWindows(rasterizer_),
                                   x11_->screenCapture()});
        return true;
    }

    [[nodiscard]] const Platform& platform() const override { return *platform_; }

    [[nodiscard]] std::string trustProblem() override { return accessibility_->trustProblem(); }

    [[nodiscard]] int run() override {
        const Token termination = terminationSignals_.watch(loop_, [this] { quit(EXIT_SUCCESS); });
        return QGuiApplication::exec();
    }

    void quit(int exitStatus) override { QGuiApplication::exit(exitStatus); }

    [[nodiscard]] RoundTrips roundTrips() const override {
        return {accessibility_->requests(), accessibility_->waits(), x11_->roundTrips()};
    }

private:
    TerminationSignals terminationSignals_;
    QGuiApplication application_;
    QtRunLoop loop_;
    QtDefaults defaults_;
    PainterRasterizer rasterizer_;
    LinuxFileSystem fileSystem_;
    std::unique_ptr<X11Desktop> x11_;
    std::optional<LinuxApplications> applications_;
    std::optional<AtspiAccessibility> accessibility_;
    std::optional<Platform> platform_;
};

} // namespace

std::unique_ptr<NativeDesktop> NativeDesktop::open(int& argc, char** argv, std::string& problem) {
    problem = displayProblem();
    if (!problem.empty()) {
        return nullptr;
    }
    keepQtSmall();
    auto desktop = std::make_unique<LinuxDesktop>(argc, argv);
    if (!desktop->connect(problem)) {
        return nullptr;
    }
    return desktop;
}

} // namespace lumetry
