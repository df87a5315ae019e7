#include "platform/qt/widgets/notifier_item.h"

#include "platform/qt/widgets/notifier_tray.h"
#include "platform/qt/widgets/template_icon.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QImage>
#include <QList>
#include <QPixmap>
#include <QtEndian>

namespace lumetry {

/// A picture as it is sent: ARGB, each pixel with its highest byte first.
struct NotifierPicture {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

/// What is shown beside the pointer.
struct NotifierToolTip {
    QString icon;
    QList<NotifierPicture> pictures;
    QString title;
    QString text;
};

} // namespace lumetry

// Both are sent only: Qt wants to be able to read what it writes.
QDBusArgument& operator<<(QDBusArgument& argument, const lumetry::NotifierPicture& picture) {
    argument.beginStructure();
    argument << picture.width << picture.height << picture.pixels;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, lumetry::NotifierPicture& picture) {
    argument.beginStructure();
    argument >> picture.width >> picture.height >> picture.pixels;
    argument.endStructure();
    return argument;
}
QDBusArgument& operator<<(QDBusArgument& argument, const lumetry::NotifierToolTip& tip) {
    argument.beginStructure();
    argument << tip.icon << tip.pictures << tip.title << tip.text;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, lumetry::NotifierToolTip& tip) {
    argument.beginStructure();
    argument >> tip.icon >> tip.pictures >> tip.title >> tip.text;
    argument.endStructure();
    return argument;
}

Q_DECLARE_METATYPE(lumetry::NotifierPicture)
Q_DECLARE_METATYPE(lumetry::NotifierToolTip)

namespace lumetry {
namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
/// Trays look for an item here.
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuPath = QStringLiteral("/StatusNotifierItem/Menu");

QList<NotifierPicture> picturesOf(const QIcon& icon) {
    QList<NotifierPicture> pictures;
    for (const QSize& size : icon.availableSizes()) {
        const QImage image =
            icon.pixmap(size, 1.0).toImage().convertToFormat(QImage::Format_ARGB32);
        NotifierPicture picture{image.width(), image.height(), {}};
        picture.pixels.resize(image.sizeInBytes());
        qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, picture.pixels.data());
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

} // namespace

NotifierItem::NotifierItem(NotifierTray& tray)
    : BusObject(itemPath, QStringLiteral("org.kde.StatusNotifierItem")), tray_(tray),
      menu_(menuPath), color_([this] { sendSignal(QStringLiteral("NewIcon")); }) {
    qDBusRegisterMetaType<NotifierPicture>();
    qDBusRegisterMetaType<QList<NotifierPicture>>();
    qDBusRegisterMetaType<NotifierToolTip>();
    tray_.onChange([this] { registerWithTray(); });
}

NotifierItem::~NotifierItem() {
    tray_.onChange({});
}

void NotifierItem::setImage(const TemplateImage& image) {
    const bool isFirst = !image_;
    image_ = image;
    if (isFirst) {
        registerWithTray();
    } else {
        sendSignal(QStringLiteral("NewIcon"));
    }
}

void NotifierItem::setToolTip(const std::string& text) {
    toolTip_ = QString::fromStdString(text);
    sendSignal(QStringLiteral("NewToolTip"));
}

void NotifierItem::setMenu(std::vector<MenuItem> menu) {
    menu_.setRows(std::move(menu));
}

QVariantMap NotifierItem::properties() const {
    const auto pictures =
        image_ ? picturesOf(templateIcon(*image_, color_.get())) : QList<NotifierPicture>();
    const NotifierToolTip tip{{}, {}, toolTip_, {}};
    return {{QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
            {QStringLiteral("Id"), QStringLiteral("lumetry")},
            {QStringLiteral("Title"), QStringLiteral("Lumetry")},
            {QStringLiteral("Status"), QStringLiteral("Active")},
            {QStringLiteral("IconName"), QString()},
            {QStringLiteral("IconPixmap"), QVariant::fromValue(pictures)},
            {QStringLiteral("ToolTip"), QVariant::fromValue(tip)},
            {QStringLiteral("ItemIsMenu"), true},
            {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(menuPath))}};
}

/// A tray that has restarted does not know of it any more.
void NotifierItem::registerWithTray() {
    if (!tray_.isPresent() || !image_) {
        return;
    }
    const auto bus = QDBusConnection::sessionBus();
    auto message = QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName,
                                                  QStringLiteral("RegisterStatusNotifierItem"));
    message << bus.baseService();
    bus.send(message);
}

} // namespace lumetry
