#include "platform/qt/widgets/notifier_menu.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QMetaObject>
#include <QStringList>

#include <utility>

namespace lumetry {

/// A row, or the whole menu, as it is sent.
struct MenuNode {
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

/// What a row is like, without those below it.
struct MenuNodeProperties {
    int id = 0;
    QVariantMap properties;
};

} // namespace lumetry

// Both are sent only: Qt wants to be able to read what it writes.
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

Q_DECLARE_METATYPE(lumetry::MenuNode)
Q_DECLARE_METATYPE(lumetry::MenuNodeProperties)

namespace lumetry {

NotifierMenu::NotifierMenu(const QString& path)
    : BusObject(path, QStringLiteral("com.canonical.dbusmenu")) {
    qDBusRegisterMetaType<MenuNode>();
    qDBusRegisterMetaType<MenuNodeProperties>();
    qDBusRegisterMetaType<QList<MenuNodeProperties>>();
    qDBusRegisterMetaType<QList<QStringList>>();
}

void NotifierMenu::setRows(std::vector<MenuItem> rows) {
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
    if (method == QStringLiteral("GetLayout") && !arguments.isEmpty()) {
        return layout(arguments[0].toInt());
    }
    if (method == QStringLiteral("GetGroupProperties") && !arguments.isEmpty()) {
        QList<MenuNodeProperties> list;
        for (const int id : qdbus_cast<QList<int>>(arguments[0])) {
            list.push_back({id, propertiesOf(id)});
        }
        return QVariantList{QVariant::fromValue(list)};
    }
    if (method == QStringLiteral("Event") && arguments.size() > 1) {
        if (arguments[1].toString() == QStringLiteral("clicked")) {
            choose(arguments[0].toInt());
        }
        return QVariantList();
    }
    // Nothing changes while it is open.
    return method == QStringLiteral("AboutToShow") ? std::optional(QVariantList{false})
                                                   : std::nullopt;
}

QVariantList NotifierMenu::layout(int parent) const {
    MenuNode node{parent, propertiesOf(parent), {}};
    const int count = parent == 0 ? static_cast<int>(rows_.size()) : 0;
    for (int id = 1; id <= count; ++id) {
        node.children.push_back(QVariant::fromValue(MenuNode{id, propertiesOf(id), {}}));
    }
    return {revision_, QVariant::fromValue(node)};
}

QVariantMap NotifierMenu::propertiesOf(int id) const {
    if (id < 1 || static_cast<std::size_t>(id) > rows_.size()) {
        return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
    }
    const MenuItem& row = rows_[static_cast<std::size_t>(id) - 1];
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

void NotifierMenu::choose(int id) {
    if (id < 1 || static_cast<std::size_t>(id) > rows_.size()) {
        return;
    }
    // Later, for the row may end the program: the tray is answered before.
    if (const auto& action = rows_[static_cast<std::size_t>(id) - 1].action) {
        QMetaObject::invokeMethod(this, action, Qt::QueuedConnection);
    }
}

} // namespace lumetry
