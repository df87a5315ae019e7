#include "platform/qt/widgets/qt_own_application.h"

#include "platform/linux/settings_panes.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <QWindow>

#include <xcb/xcb.h>

#include <csignal>
#include <cstdlib>

namespace lumetry {
namespace {

/// The window that stands for the program: the one with the keyboard, else the latest that is open.
QWindow* frontWindow() {
    QWindow* front = nullptr;
    for (QWindow* const window : QGuiApplication::topLevelWindows()) {
        const bool standsAlone = window->type() == Qt::Window || window->type() == Qt::Dialog ||
                                 window->type() == Qt::Tool;
        if (window->isVisible() && standsAlone && window->handle() != nullptr) {
            front = window;
        }
    }
    return QGuiApplication::focusWindow() != nullptr ? QGuiApplication::focusWindow() : front;
}

/// Asks the window manager as a pager does, whom it does not suspect of stealing the keyboard.
void activate(QWindow& window) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        window.requestActivate();
        return;
    }
    xcb_connection_t* const connection = x11->connection();
    constexpr std::string_view name = "_NET_ACTIVE_WINDOW";
    xcb_intern_atom_reply_t* const atom = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, name.size(), name.data()), nullptr);
    if (atom == nullptr) {
        return;
    }
    constexpr std::uint32_t fromPager = 2;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window.winId());
    message.type = atom->atom;
    message.data.data32[0] = fromPager;
    std::free(atom); // NOLINT(cppcoreguidelines-no-malloc): the library hands it out so
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as it is sent
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

/// Starts a program that outlives this one.
void startDetached(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    // This process holds requests to end it back, and a program inherits that.
    process.setChildProcessModifier([] {
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
    });
    process.startDetached();
}

QStringList toQt(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

} // namespace

std::string QtOwnApplication::bundlePath() {
    const QString folder = QCoreApplication::applicationDirPath();
    for (QDir place(folder); !place.isRoot();) {
        if (place.dirName().endsWith(QStringLiteral(".app"))) {
            return place.absolutePath().toStdString();
        }
        if (!place.cdUp()) {
            break;
        }
    }
    return folder.toStdString();
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
        address, qgetenv("XDG_CURRENT_DESKTOP").toStdString(), [](const std::string& program) {
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

} // namespace lumetry
