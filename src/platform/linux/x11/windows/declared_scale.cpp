#include "platform/linux/x11/windows/declared_scale.h"

#include "platform/linux/windows/root_space.h"

#include <xcb/xcb_xrm.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

namespace lumetry::x11 {
namespace {

constexpr double dotsPerInch = 96;

/// Reads numbers and texts from the start of some bytes; once it has come to their end, nothing.
class SettingsReader {
public:
    explicit SettingsReader(std::span<const std::uint8_t> bytes)
        : left_(bytes), isBigEndian_(byte().value_or(0) == 1) {}

    std::optional<std::uint8_t> byte() {
        const auto bytes = take(1);
        return bytes.empty() ? std::nullopt : std::optional(bytes[0]);
    }

    std::optional<std::uint32_t> number(std::size_t size) {
        const auto bytes = take(size);
        if (bytes.empty()) {
            return std::nullopt;
        }
        constexpr unsigned bitsPerByte = 8;
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < size; ++i) {
            number = number << bitsPerByte | bytes[isBigEndian_ ? i : size - 1 - i];
        }
        return number;
    }

    /// Takes in what fills it up to a multiple of four bytes.
    std::string_view text(std::size_t length) {
        const auto bytes = take(length);
        skip((4 - length % 4) % 4);
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    bool skip(std::size_t count) { return count == 0 || !take(count).empty(); }

private:
    std::span<const std::uint8_t> take(std::size_t count) {
        if (count > left_.size()) {
            left_ = {};
            return {};
        }
        const auto taken = left_.first(count);
        left_ = left_.subspan(count);
        return taken;
    }

    std::span<const std::uint8_t> left_;
    bool isBigEndian_;
};

/// The value of a setting that is a whole number.
std::optional<std::int32_t> integerSetting(std::span<const std::uint8_t> bytes,
                                           std::string_view wanted) {
    enum : std::uint8_t { integer, text, color };
    constexpr std::size_t colorSize = 8;
    SettingsReader reader(bytes);
    reader.skip(3);
    (void)reader.number(4); // how often they have changed
    for (std::uint32_t left = reader.number(4).value_or(0); left > 0; --left) {
        const auto type = reader.byte();
        reader.skip(1);
        const auto nameLength = reader.number(2);
        if (!type || !nameLength) {
            break;
        }
        const std::string_view name = reader.text(*nameLength);
        (void)reader.number(4); // when it has last changed
        if (*type == integer) {
            const auto value = reader.number(4);
            if (name == wanted && value) {
                return static_cast<std::int32_t>(*value);
            }
        } else if (*type == text) {
            (void)reader.text(reader.number(4).value_or(0));
        } else if (*type != color || !reader.skip(colorSize)) {
            break;
        }
    }
    return std::nullopt;
}

std::optional<double> numberResource(const std::string& resources, const char* name) {
    const std::unique_ptr<xcb_xrm_database_t, decltype(&xcb_xrm_database_free)> database(
        xcb_xrm_database_from_string(resources.c_str()), xcb_xrm_database_free);
    char* value = nullptr;
    if (!database || xcb_xrm_resource_get_string(database.get(), name, nullptr, &value) != 0) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(value, std::free);
    char* end = nullptr;
    const double number = std::strtod(value, &end);
    const bool isNumber =
        end != value && std::string_view(end).find_first_not_of(" \t") == std::string_view::npos;
    return isNumber ? std::optional(number) : std::nullopt;
}

} // namespace

double declaredScale(const Declarations& declarations) {
    constexpr double settingsPerDot = 1024;
    if (const auto dots = integerSetting(declarations.settings, "Xft/DPI")) {
        if (const auto scale = usableScale(*dots / settingsPerDot / dotsPerInch)) {
            return *scale;
        }
    }
    if (const auto dots = numberResource(declarations.resources, "Xft.dpi")) {
        if (const auto scale = usableScale(*dots / dotsPerInch)) {
            return *scale;
        }
    }
    const auto factor = integerSetting(declarations.settings, "Gdk/WindowScalingFactor");
    return usableScale(factor.value_or(1)).value_or(1);
}

} // namespace lumetry::x11
