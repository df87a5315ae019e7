#include "platform/qt/widgets/qt_own_application.h"

#include "platform/linux/system/environment.h"
#include "platform/linux/system/file_system.h"
#include "platform/linux/system/settings_panes.h"
#include "platform/linux/x11/connection/atoms.h"
#include "platform/qt/widgets/own_windows.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <QWindow>

#include <xcb/xcb.h>

#include <csignal>

namespace lumetry {
namespace {

/// Asks the window manager as a pager does, whom it does not suspect of stealing the keyboard.
void activate(QWindow& window) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        window.requestActivate();
        return;
    }
    xcb_connection_t* const connection = x11->connection();
    const xcb_atom_t type = x11::internAtom(connection, "_NET_ACTIVE_WINDOW");
    if (type == XCB_ATOM_NONE) {
        return;
    }
    constexpr std::uint32_t fromPager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window.winId());
    message.type = type;
    message.data.data32[0] = fromPager;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as it is sent
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

QStringList toQt(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

} // namespace

QProcessEnvironment environmentForOthers() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN",
                                   "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"}) {
        environment.remove(QLatin1String(name));
    }
    return environment;
}

std::string QtOwnApplication::bundlePath() {
    return bundleOf(QCoreApplication::applicationFilePath().toStdString()).string();
}

void QtOwnApplication::activateIgnoringOtherApps() {
    // Later, so that a window that is about to be shown is there.
    QTimer::singleShot(0, qGuiApp, [] {
        if (QWindow* const window = frontWindow()) {
            activate(*window);
        }
    });
}

Token QtOwnApplication::addDidBecomeActiveObserver(std::function<void()> handler) {
    auto* const context = new QObject(qGuiApp);
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, context,
                     [handler = std::move(handler)](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive) {
                             handler();
                         }
                     });
    return Token([guarded = QPointer(context)] {
        if (guarded) {
            guarded->disconnect();
            qGuiApp->disconnect(guarded);
            guarded->deleteLater();
        }
    });
}

void QtOwnApplication::terminate() {
    QMetaObject::invokeMethod(
        qGuiApp, [] { QCoreApplication::exit(EXIT_SUCCESS); }, Qt::QueuedConnection);
}

void QtOwnApplication::openAddress(std::string_view address) {
    const auto command = settingsPaneCommand(
        address, environmentText("XDG_CURRENT_DESKTOP"), [](const std::string& program) {
            return !QStandardPaths::findExecutable(QString::fromStdString(program)).isEmpty();
        });
    if (!command.empty()) {
        QStringList arguments = toQt(command);
        const QString program = arguments.takeFirst();
        startDetached(program, arguments);
    }
}

void QtOwnApplication::startProcess(const std::string& executable,
                                    const std::vector<std::string>& arguments) {
    startDetached(QString::fromStdString(executable), toQt(arguments));
}

void QtOwnApplication::startDetached(const QString& program, const QStringList& arguments) const {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment_);
    // This process holds requests to end it back and ignores broken pipes: a program inherits that.
    process.setChildProcessModifier([] {
        std::signal(SIGPIPE, SIG_DFL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    });
    process.startDetached();
}

} // namespace lumetry
