#pragma once

#include <string_view>

namespace lumetry {

/// The user's settings (NSUserDefaults).
class Defaults {
public:
    Defaults() = default;
    Defaults(const Defaults&) = delete;
    Defaults& operator=(const Defaults&) = delete;
    virtual ~Defaults() = default;

    /// A setting, false where it is absent or not a truth value.
    [[nodiscard]] virtual bool boolForKey(std::string_view key) = 0;
    /// Stores a setting. A folder that cannot be written loses it without harm.
    virtual void setBool(bool value, std::string_view key) = 0;
};

} // namespace lumetry
