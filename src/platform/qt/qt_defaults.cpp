#include "platform/qt/qt_defaults.h"

#include <QString>

#include <iostream>

namespace lumetry {
namespace {

QString settingName(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

/// Whether the setting's text means yes: one of two words, or a number other than 0.
bool meansYes(const QString& value) {
    const QString text = value.trimmed();
    const double number = text.toDouble();
    return text.compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0 ||
           text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || number < 0 ||
           number > 0;
}

} // namespace

QtDefaults::QtDefaults()
    : settings_(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("lumetry"),
                QStringLiteral("lumetry")) {
    settings_.setFallbacksEnabled(false);
}

bool QtDefaults::boolForKey(std::string_view key) {
    return meansYes(settings_.value(settingName(key)).toString());
}

void QtDefaults::setBool(bool value, std::string_view key) {
    settings_.setValue(settingName(key), value);
    settings_.sync();
    if (settings_.status() != QSettings::NoError && !complained_) {
        complained_ = true;
        std::cerr << "lumetry: settings cannot be kept: make " << settings_.fileName().toStdString()
                  << " writable\n";
    }
}

std::optional<double> QtDefaults::numberForKey(std::string_view key) const {
    bool isNumber = false;
    const double number = settings_.value(settingName(key)).toString().toDouble(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace lumetry
