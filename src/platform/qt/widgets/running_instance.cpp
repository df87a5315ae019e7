#include "platform/qt/widgets/running_instance.h"

#include <QCoreApplication>
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

/// What the connection is called in this process. The one that Qt shares would hold messages back
/// until the main loop runs.
const QString connectionName = QStringLiteral("lumetry");
const QString busName = QStringLiteral("app.lumetry.Lumetry");
const QString objectPath = QStringLiteral("/app/lumetry/Lumetry");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");

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
        started_ = started_ || starting_;
        if (message.path() != objectPath || message.interface() != interfaceName) {
            return false;
        }
        const QString method = message.member();
        if (method != QStringLiteral("Activate") && method != QStringLiteral("Open") &&
            method != QStringLiteral("ActivateAction")) {
            return false;
        }
        bus.send(message.createReply());
        const bool isStart = starting_ || (started_ && !opened_);
        opened_ = true;
        if (!isStart && handler) {
            handler();
        }
        return true;
    }

    /// Handles the calls that have waited for somebody to take the name: the bus has started this
    /// process for them. They do not open it again; nor does the first call to open it where it
    /// was another one that has waited, such as a question what there is to call.
    void handleWaiting() {
        QCoreApplication::sendPostedEvents(this);
        starting_ = false;
    }

private:
    bool starting_ = true;
    bool started_ = false; ///< by the bus
    bool opened_ = false;
};

RunningInstance::RunningInstance() : service_(std::make_unique<Service>()) {
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    if (!bus.isConnected()) {
        return;
    }
    bus.registerVirtualObject(objectPath, service_.get());
    const auto taken = bus.interface()->registerService(busName);
    if (taken.isValid() && taken.value() != QDBusConnectionInterface::ServiceRegistered) {
        role_ = askToComeForward(bus) ? Role::later : Role::unanswered;
        owner_ = static_cast<pid_t>(bus.interface()->servicePid(busName).value());
        return;
    }
    // What has waited is here by the time that the bus answers another question.
    static_cast<void>(bus.interface()->serviceOwner(busName));
    service_->handleWaiting();
}

RunningInstance::~RunningInstance() {
    QDBusConnection(connectionName).unregisterObject(objectPath);
    QDBusConnection::disconnectFromBus(connectionName);
}

void RunningInstance::onReopen(std::function<void()> handler) {
    service_->handler = std::move(handler);
}

} // namespace lumetry
