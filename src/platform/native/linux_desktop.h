#pragma once

#include "platform/linux/applications/applications.h"
#include "platform/linux/atspi/accessibility.h"
#include "platform/linux/display/linux_display.h"
#include "platform/linux/system/file_system.h"
#include "platform/linux/x11/desktop.h"
#include "platform/native/linux_screen_lock.h"
#include "platform/native/native_desktop.h"
#include "platform/native/termination_signals.h"
#include "platform/qt/painter_rasterizer.h"
#include "platform/qt/qt_defaults.h"
#include "platform/qt/qt_run_loop.h"
#include "platform/resting_event_monitors.h"

#include <QGuiApplication>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumetry {

/// The Linux desktop: AT-SPI and X11, or Plasma on Wayland, with Qt's loop and drawing.
class LinuxDesktop final : public NativeDesktop {
public:
    /// Makes Qt's application object, of the kind that the program needs.
    using ApplicationMaker = std::function<std::unique_ptr<QGuiApplication>()>;

    /// @param hasWindows whether the program shows windows of its own besides the overlay
    /// @param problem as in NativeDesktop::open
    [[nodiscard]] static std::unique_ptr<LinuxDesktop> open(const ApplicationMaker& makeApplication,
                                                            bool hasWindows, std::string& problem);

    LinuxDesktop(const LinuxDesktop&) = delete;
    LinuxDesktop& operator=(const LinuxDesktop&) = delete;
    ~LinuxDesktop() override;

    [[nodiscard]] const Platform& platform() const override { return *platform_; }
    [[nodiscard]] std::string trustProblem() override { return accessibility_->trustProblem(); }
    [[nodiscard]] int run() override;
    void quit(int exitStatus) override { QGuiApplication::exit(exitStatus); }
    [[nodiscard]] std::optional<int> terminationSignal() override {
        return terminationSignals_.received();
    }
    [[nodiscard]] RoundTrips roundTrips() const override;

    [[nodiscard]] LinuxDisplay& display() { return *display_; }
    /// Null in a Wayland session.
    [[nodiscard]] X11Desktop* x11() { return x11_; }

private:
    explicit LinuxDesktop(const ApplicationMaker& makeApplication);
    [[nodiscard]] bool connectToX11(std::string& problem);
    [[nodiscard]] bool connectToPlasma(std::string& problem);
    void outliveCompositor();
    void quitWithoutCompositor();
    void putTogether();

    TerminationSignals terminationSignals_;
    std::unique_ptr<QGuiApplication> application_;
    QtRunLoop loop_;
    QtDefaults defaults_;
    PainterRasterizer rasterizer_;
    LinuxFileSystem fileSystem_;
    std::unique_ptr<LinuxDisplay> display_;
    X11Desktop* x11_ = nullptr;
    std::optional<LinuxApplications> applications_;
    std::optional<AtspiAccessibility> accessibility_;
    std::optional<LinuxScreenLock> screenLock_;
    std::optional<RestingEventMonitors> eventMonitors_;
    std::optional<Platform> platform_;
};

} // namespace lumetry
