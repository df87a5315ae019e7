#include "platform/qt/widgets/notifier_menu.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMetaObject>
#include <QStringList>

#include <cstddef>
#include <numeric>
#include <utility>

namespace lumetry {

/// A row, or the whole menu, as it is sent.
struct MenuNode {
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

/// What has happened to a row.
struct MenuEvent {
    int id = 0;
    QString name;
    QDBusVariant data;
    unsigned time = 0;
};

/// What a row is like, without those below it.
struct MenuNodeProperties {
    int id = 0;
    QVariantMap properties;
};

} // namespace lumetry

// Qt wants to be able to read what it writes, and the other way round.
QDBusArgument& operator<<(QDBusArgument& argument, const lumetry::MenuNode& node) {
    argument.beginStructure();
    argument << node.id << node.properties << node.children;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, lumetry::MenuNode& node) {
    argument.beginStructure();
    argument >> node.id >> node.properties >> node.children;
    argument.endStructure();
    return argument;
}
QDBusArgument& operator<<(QDBusArgument& argument, const lumetry::MenuNodeProperties& node) {
    argument.beginStructure();
    argument << node.id << node.properties;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, lumetry::MenuNodeProperties& node) {
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const lumetry::MenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.name << event.data << event.time;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, lumetry::MenuEvent& event) {
    argument.beginStructure();
    argument >> event.id >> event.name >> event.data >> event.time;
    argument.endStructure();
    return argument;
}

Q_DECLARE_METATYPE(lumetry::MenuEvent)
Q_DECLARE_METATYPE(lumetry::MenuNode)
Q_DECLARE_METATYPE(lumetry::MenuNodeProperties)

namespace lumetry {

NotifierMenu::NotifierMenu(const QString& path)
    : BusObject(path, QStringLiteral("com.canonical.dbusmenu")) {
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuNodeProperties>();
    qDBusRegisterMetaType<QList<MenuNodeProperties>>();
    qDBusRegisterMetaType<QList<QStringList>>();
}

void NotifierMenu::setRows(std::vector<MenuItem> rows) {
    // A click on a row that is gone is not one on the row in its place.
    firstId_ += static_cast<int>(rows_.size());
    rows_ = std::move(rows);
    ++revision_;
    sendSignal(QStringLiteral("LayoutUpdated"), {revision_, 0});
}

QVariantMap NotifierMenu::properties() const {
    return {{QStringLiteral("Version"), 3U},
            {QStringLiteral("TextDirection"), QStringLiteral("ltr")},
            {QStringLiteral("Status"), QStringLiteral("normal")},
            {QStringLiteral("IconThemePath"), QStringList()}};
}

std::optional<QVariantList> NotifierMenu::call(const QString& method,
                                               const QVariantList& arguments) {
    const int id = arguments.isEmpty() ? 0 : arguments[0].toInt();
    if (method == QStringLiteral("GetLayout") && arguments.size() > 1) {
        return isThere(id) ? std::optional(layout(id, arguments[1].toInt())) : std::nullopt;
    }
    if (method == QStringLiteral("GetGroupProperties") && !arguments.isEmpty()) {
        const auto wanted = qdbus_cast<QList<int>>(arguments[0]);
        QList<MenuNodeProperties> list;
        for (const int one : wanted.isEmpty() ? ids() : wanted) {
            if (isThere(one)) {
                list.push_back({one, propertiesOf(one)});
            }
        }
        return QVariantList{QVariant::fromValue(list)};
    }
    if (method == QStringLiteral("GetProperty") && arguments.size() > 1) {
        const QVariant value = propertiesOf(id).value(arguments[1].toString());
        return value.isValid()
                   ? std::optional(QVariantList{QVariant::fromValue(QDBusVariant(value))})
                   : std::nullopt;
    }
    if (method == QStringLiteral("Event") && arguments.size() > 1) {
        take(id, arguments[1].toString());
        return QVariantList();
    }
    if (method == QStringLiteral("EventGroup") && !arguments.isEmpty()) {
        QList<int> unknown;
        for (const MenuEvent& event : qdbus_cast<QList<MenuEvent>>(arguments[0])) {
            take(event.id, event.name);
            if (!isThere(event.id)) {
                unknown.push_back(event.id);
            }
        }
        return QVariantList{QVariant::fromValue(unknown)};
    }
    // Nothing changes while it is open.
    if (method == QStringLiteral("AboutToShowGroup")) {
        return QVariantList{QVariant::fromValue(QList<int>()), QVariant::fromValue(QList<int>())};
    }
    return method == QStringLiteral("AboutToShow") ? std::optional(QVariantList{false})
                                                   : std::nullopt;
}

/// @param depth how many levels of rows below it are wanted; negative for all
QVariantList NotifierMenu::layout(int parent, int depth) const {
    MenuNode node{parent, propertiesOf(parent), {}};
    if (parent == 0 && depth != 0) {
        for (const int id : ids()) {
            node.children.push_back(QVariant::fromValue(MenuNode{id, propertiesOf(id), {}}));
        }
    }
    return {revision_, QVariant::fromValue(node)};
}

QList<int> NotifierMenu::ids() const {
    QList<int> ids(static_cast<qsizetype>(rows_.size()));
    std::iota(ids.begin(), ids.end(), firstId_);
    return ids;
}

/// Null when there is none of that number.
const MenuItem* NotifierMenu::row(int id) const {
    if (id < firstId_) {
        return nullptr;
    }
    const auto place = static_cast<std::size_t>(id - firstId_);
    return place < rows_.size() ? &rows_[place] : nullptr;
}

QVariantMap NotifierMenu::propertiesOf(int id) const {
    const MenuItem* const known = row(id);
    if (known == nullptr) {
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    }
    const MenuItem& row = *known;
    if (row.separator) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    }
    // One underscore would underline what follows it.
    QVariantMap properties = {{QStringLiteral("label"), QString::fromStdString(row.title).replace(
                                                            u'_', QStringLiteral("__"))},
                              {QStringLiteral("enabled"), row.enabled}};
    if (!row.keyEquivalent.empty()) {
        const QStringList keys = {QStringLiteral("Control"),
                                  QString::fromStdString(row.keyEquivalent).toUpper()};
        properties[QStringLiteral("shortcut")] = QVariant::fromValue(QList<QStringList>{keys});
    }
    return properties;
}

void NotifierMenu::take(int id, const QString& event) {
    const MenuItem* const chosen = event == QStringLiteral("clicked") ? row(id) : nullptr;
    // Later, for the row may end the program: the tray is answered before.
    if (chosen != nullptr && chosen->action) {
        QMetaObject::invokeMethod(this, chosen->action, Qt::QueuedConnection);
    }
}

} // namespace lumetry
