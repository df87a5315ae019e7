#include "platform/qt/widgets/bus_object.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

#include <utility>

namespace lumetry {
namespace {

/// What the standard interface for reading properties answers.
std::optional<QVariantList> readProperties(const QString& method, const QVariantList& arguments,
                                           const QVariantMap& properties) {
    if (method == QStringLiteral("GetAll")) {
        return QVariantList{properties};
    }
    const QString name = arguments.size() > 1 ? arguments[1].toString() : QString();
    if (method != QStringLiteral("Get") || !properties.contains(name)) {
        return std::nullopt;
    }
    return QVariantList{QVariant::fromValue(QDBusVariant(properties[name]))};
}

} // namespace

BusObject::BusObject(QString path, QString interface)
    : path_(std::move(path)), interface_(std::move(interface)) {
    QDBusConnection::sessionBus().registerVirtualObject(path_, this);
}

BusObject::~BusObject() {
    QDBusConnection::sessionBus().unregisterObject(path_);
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    std::optional<QVariantList> answer;
    if (message.interface() == interface_) {
        answer = call(message.member(), message.arguments());
    } else if (message.interface() == QStringLiteral("org.freedesktop.DBus.Properties")) {
        answer = readProperties(message.member(), message.arguments(), properties());
    }
    return answer && bus.send(message.createReply(*answer));
}

void BusObject::sendSignal(const QString& name, const QVariantList& arguments) const {
    auto message = QDBusMessage::createSignal(path_, interface_, name);
    message.setArguments(arguments);
    QDBusConnection::sessionBus().send(message);
}

} // namespace lumetry
