#include "platform/qt/widgets/panel_color.h"

#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>

#include <optional>
#include <utility>

namespace lumetry {
namespace {

const QString textColor = QStringLiteral("Colors:Window/ForegroundNormal");
/// The windows' where no colours have been chosen.
constexpr QColor breezeText(35, 38, 41);

std::optional<QColor> colorIn(const QVariant& value) {
    const QStringList numbers = value.toStringList();
    constexpr int channels = 3;
    if (numbers.size() < channels) {
        return std::nullopt;
    }
    const QColor color(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt());
    return color.isValid() ? std::optional(color) : std::nullopt;
}

/// A setting of KDE's; the user's own files come before the system's. Invalid where it is not set.
QVariant setting(const QString& file, const QString& key) {
    const QStringList paths =
        QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, file);
    for (const QString& path : paths) {
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.contains(key)) {
            return settings.value(key);
        }
    }
    return {};
}

QColor readColor() {
    const QString theme = setting(QStringLiteral("plasmarc"), QStringLiteral("Theme/name"))
                              .toString()
                              .section(u'/', -1);
    const QString colors =
        theme.isEmpty()
            ? QString()
            : QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                     QStringLiteral("plasma/desktoptheme/%1/colors").arg(theme));
    const auto ofTheme = colors.isEmpty()
                             ? std::nullopt
                             : colorIn(QSettings(colors, QSettings::IniFormat).value(textColor));
    return ofTheme ? *ofTheme
                   : colorIn(setting(QStringLiteral("kdeglobals"), textColor)).value_or(breezeText);
}

/// The folders of settings that are there. Files in them are replaced rather than written to.
QStringList settingsFolders() {
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation);
    folders.removeIf([](const QString& folder) { return !QFileInfo(folder).isDir(); });
    return folders;
}

} // namespace

PanelColor::PanelColor(std::function<void()> changed)
    : color_(readColor()), watcher_(settingsFolders()) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this, changed = std::move(changed)] {
                         if (std::exchange(color_, readColor()) != color_) {
                             changed();
                         }
                     });
}

} // namespace lumetry
