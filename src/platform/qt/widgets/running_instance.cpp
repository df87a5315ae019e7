#include "platform/qt/widgets/running_instance.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVirtualObject>
#include <QVariant>

#include <utility>

namespace lumetry {
namespace {

constexpr int answerMilliseconds = 5000;

const QString busName = QStringLiteral("app.lumetry.Lumetry");
const QString objectPath = QStringLiteral("/app/lumetry/Lumetry");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");

/// Whether the bus has started this process to have it opened. Told once: processes that this one
/// starts are not started by the bus.
bool takeStartedByBus() {
    const bool started = qEnvironmentVariableIsSet("DBUS_STARTER_ADDRESS");
    qunsetenv("DBUS_STARTER_ADDRESS");
    qunsetenv("DBUS_STARTER_BUS_TYPE");
    return started;
}

bool askToComeForward(const QDBusConnection& bus) {
    auto message = QDBusMessage::createMethodCall(busName, objectPath, interfaceName,
                                                  QStringLiteral("Activate"));
    message << QVariantMap();
    return bus.call(message, QDBus::Block, answerMilliseconds).type() == QDBusMessage::ReplyMessage;
}

} // namespace

/// Answers on the bus.
class RunningInstance::Service final : public QDBusVirtualObject {
public:
    std::function<void()> handler;

    [[nodiscard]] QString introspect(const QString& path) const override {
        return path != objectPath ? QString()
                                  : QStringLiteral(R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg name="platform_data" type="a{sv}" direction="in"/></method>
  <method name="Open"><arg name="uris" type="as" direction="in"/><arg name="platform_data" type="a{sv}" direction="in"/></method>
  <method name="ActivateAction"><arg name="action_name" type="s" direction="in"/><arg name="parameter" type="av" direction="in"/><arg name="platform_data" type="a{sv}" direction="in"/></method>
</interface>)");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.path() != objectPath || message.interface() != interfaceName) {
            return false;
        }
        const QString method = message.member();
        if (method != QStringLiteral("Activate") && method != QStringLiteral("Open") &&
            method != QStringLiteral("ActivateAction")) {
            return false;
        }
        bus.send(message.createReply());
        // The call that the bus has started this process for is not another one.
        if (!std::exchange(expectsFirstCall_, false)) {
            const auto reopen = [this] {
                if (handler) {
                    handler();
                }
            };
            QMetaObject::invokeMethod(this, reopen, Qt::QueuedConnection);
        }
        return true;
    }

private:
    bool expectsFirstCall_ = takeStartedByBus();
};

RunningInstance::RunningInstance() : service_(std::make_unique<Service>()) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.registerVirtualObject(objectPath, service_.get());
    const auto taken = bus.interface()->registerService(busName);
    if (taken.isValid() && taken.value() != QDBusConnectionInterface::ServiceRegistered) {
        role_ = askToComeForward(bus) ? Role::later : Role::unanswered;
    }
}

RunningInstance::~RunningInstance() {
    auto bus = QDBusConnection::sessionBus();
    bus.unregisterService(busName);
    bus.unregisterObject(objectPath);
}

void RunningInstance::onReopen(std::function<void()> handler) {
    service_->handler = std::move(handler);
}

} // namespace lumetry
