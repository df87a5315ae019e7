#pragma once

#include "platform/defaults.h"

#include <QSettings>

#include <optional>
#include <string_view>

namespace lumetry {

/// Settings kept in lumetry/lumetry.conf below $XDG_CONFIG_HOME.
class QtDefaults final : public Defaults {
public:
    QtDefaults();

    [[nodiscard]] bool boolForKey(std::string_view key) override;
    void setBool(bool value, std::string_view key) override;
    /// Absent when the setting is none, or no number.
    [[nodiscard]] std::optional<double> numberForKey(std::string_view key) const;

private:
    QSettings settings_;
    bool complained_ = false;
};

} // namespace lumetry
