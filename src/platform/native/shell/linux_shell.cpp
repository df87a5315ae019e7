#include "platform/native/shell/native_shell.h"

#include "platform/native/linux_desktop.h"
#include "platform/native/shell/x11_embedding_tray.h"
#include "platform/qt/widgets/own_windows.h"
#include "platform/qt/widgets/qt_local_event_monitors.h"
#include "platform/qt/widgets/qt_own_application.h"
#include "platform/qt/widgets/qt_status_bar.h"
#include "platform/qt/widgets/running_instance.h"

#include <QApplication>

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

KeyboardReader keyboardReader(X11Desktop& x11) {
    return {[&x11](std::uint32_t key) { return x11.keyCode(key); },
            [&x11](std::uint32_t key) { return x11.isModifier(key); },
            [&x11] { return x11.pointer().modifierFlags(); }};
}

class LinuxShell final : public NativeShell {
public:
    LinuxShell(std::unique_ptr<LinuxDesktop> desktop, std::unique_ptr<RunningInstance> instance,
               const QProcessEnvironment& environment)
        : desktop_(std::move(desktop)), instance_(std::move(instance)),
          embeddingTray_(desktop_->x11()), statusBar_(embeddingTray_),
          localEventMonitors_(keyboardReader(desktop_->x11())), // which outlives them
          application_(environment), platform_{desktop_->platform(), desktop_->x11().hotKeys(),
                                               localEventMonitors_, application_, statusBar_} {}

    [[nodiscard]] const ShellPlatform& platform() const override { return platform_; }

    [[nodiscard]] int run(ApplicationDelegate& delegate) override {
        instance_->onReopen(
            [&delegate] { delegate.applicationShouldHandleReopen(hasVisibleWindows()); });
        desktop_->x11().onHotKeyTaken([] {
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
    X11EmbeddingTray embeddingTray_;
    QtStatusBar statusBar_;
    QtLocalEventMonitors localEventMonitors_;
    QtOwnApplication application_;
    ShellPlatform platform_;
};

} // namespace

std::unique_ptr<NativeShell> NativeShell::open(int& argc, char** argv, std::string& problem) {
    auto environment = environmentForOthers();
    auto desktop =
        LinuxDesktop::open([&] { return std::make_unique<QApplication>(argc, argv); }, problem);
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
    return std::make_unique<LinuxShell>(std::move(desktop), std::move(instance), environment);
}

} // namespace lumetry
