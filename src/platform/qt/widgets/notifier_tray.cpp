#include "platform/qt/widgets/notifier_tray.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QString>

namespace lumetry {
namespace {

const QString& service() {
    static const QString name = QStringLiteral("org.kde.StatusNotifierWatcher");
    return name;
}

} // namespace

NotifierTray::NotifierTray()
    : watcher_(service(), QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange) {
    // One tray may hand over to the next without a pause.
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, &watcher_,
                     [this](const QString& /*name*/, const QString& /*before*/,
                            const QString& after) { setPresent(!after.isEmpty()); });
    auto* const bus = QDBusConnection::sessionBus().interface();
    present_ = bus != nullptr && bus->isServiceRegistered(service()).value();
}

void NotifierTray::setPresent(bool present) {
    present_ = present;
    if (handler_) {
        handler_();
    }
}

} // namespace lumetry
