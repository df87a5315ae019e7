#include "platform/native/shell/native_shell.h"

#include "platform/native/linux_desktop.h"
#include "platform/native/resumption.h"
#include "platform/native/shell/x11_embedding_tray.h"
#include "platform/qt/widgets/own_windows.h"
#include "platform/qt/widgets/qt_local_event_monitors.h"
#include "platform/qt/widgets/qt_own_application.h"
#include "platform/qt/widgets/qt_status_bar.h"
#include "platform/qt/widgets/running_instance.h"

#include <QApplication>
#include <QKeyEvent>

#include <iostream>
#include <utility>

namespace lumetry {
namespace {

/// A process that does not answer does not end in order either.
std::string unansweredProblem(pid_t process) {
    const std::string command =
        process > 0 ? "kill -KILL " + std::to_string(process) : "pkill -KILL -x lumetry";
    return "Lumetry runs already and does not answer: end it with \"" + command +
           "\", and start it again.";
}

/// What a key event of Qt's carries is the state before it: the X server is asked.
KeyboardReader x11KeyboardReader(X11Desktop& x11) {
    return {[&x11](const QKeyEvent& key) { return x11.keyCode(key.nativeScanCode()); },
            [&x11](const QKeyEvent& key) { return x11.isModifier(key.nativeScanCode()); },
            [&x11](const QKeyEvent* /*key*/) { return x11.pointer().modifierFlags(); }};
}

std::unique_ptr<EmbeddingTray> embeddingTrayOf(LinuxDesktop& desktop) {
    if (desktop.x11() != nullptr) {
        return std::make_unique<X11EmbeddingTray>(*desktop.x11());
    }
    return std::make_unique<NoEmbeddingTray>();
}

class LinuxShell final : public NativeShell {
public:
    LinuxShell(std::unique_ptr<LinuxDesktop> desktop, std::unique_ptr<RunningInstance> instance,
               const QProcessEnvironment& environment, bool resumed)
        : desktop_(std::move(desktop)), instance_(std::move(instance)),
          embeddingTray_(embeddingTrayOf(*desktop_)), statusBar_(*embeddingTray_),
          // The desktop outlives them.
          localEventMonitors_(desktop_->x11() != nullptr ? x11KeyboardReader(*desktop_->x11())
                                                         : qtKeyboardReader()),
          application_(environment, resumed), platform_{desktop_->platform(),
                                                        desktop_->display().hotKeys(),
                                                        localEventMonitors_, application_,
                                                        statusBar_} {}

    [[nodiscard]] const ShellPlatform& platform() const override { return platform_; }

    [[nodiscard]] int run(ApplicationDelegate& delegate) override {
        instance_->onReopen(
            [&delegate] { delegate.applicationShouldHandleReopen(hasVisibleWindows()); });
        desktop_->display().onHotKeyTaken([] {
            std::cerr << "lumetry: another program has taken Control-Shift-M; until it lets go of "
                         "it, use the tray's menu, or start lumetry again for its control panel\n";
        });
        const LastWindowWatch lastWindow([this, &delegate] {
            if (delegate.applicationShouldTerminateAfterLastWindowClosed()) {
                std::cerr << "lumetry: there is no tray to stay in, so that it ends with its last "
                             "window\n";
                application_.terminate();
            }
        });
        delegate.applicationDidFinishLaunching();
        const int status = desktop_->run();
        instance_->onReopen({});
        delegate.applicationWillTerminate();
        return status;
    }

private:
    std::unique_ptr<LinuxDesktop> desktop_;
    std::unique_ptr<RunningInstance> instance_;
    std::unique_ptr<EmbeddingTray> embeddingTray_;
    QtStatusBar statusBar_;
    QtLocalEventMonitors localEventMonitors_;
    QtOwnApplication application_;
    ShellPlatform platform_;
};

} // namespace

std::unique_ptr<NativeShell> NativeShell::open(int& argc, char** argv, std::string& problem) {
    const bool resumed = hasBegunAnew();
    auto environment = environmentForOthers();
    auto desktop = LinuxDesktop::open([&] { return std::make_unique<QApplication>(argc, argv); },
                                      true, problem);
    if (!desktop) {
        return nullptr;
    }
    QGuiApplication::setDesktopFileName("app.lumetry.Lumetry");
    auto instance = std::make_unique<RunningInstance>();
    switch (instance->role()) {
    case RunningInstance::Role::later:
        return nullptr;
    case RunningInstance::Role::unanswered:
        problem = unansweredProblem(instance->owner());
        return nullptr;
    case RunningInstance::Role::first:
        break;
    }
    return std::make_unique<LinuxShell>(std::move(desktop), std::move(instance), environment,
                                        resumed);
}

} // namespace lumetry
