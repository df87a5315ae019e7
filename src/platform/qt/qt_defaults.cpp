#include "platform/qt/qt_defaults.h"

#include <QString>

#include <iostream>

namespace lumetry {
namespace {

QString settingName(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

} // namespace

QtDefaults::QtDefaults()
    : settings_(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("lumetry"),
                QStringLiteral("lumetry")) {
    settings_.setFallbacksEnabled(false);
}

bool QtDefaults::boolForKey(std::string_view key) {
    const QVariant value = settings_.value(settingName(key));
    return value.canConvert<bool>() && value.toBool();
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

} // namespace lumetry
