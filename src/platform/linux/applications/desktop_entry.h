#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry {

/// What a desktop entry says of an application.
struct DesktopEntry {
    std::string id;   ///< without ".desktop"
    std::string name; ///< in the user's language; empty where it has none
    /// The program and its arguments, without those that stand for files to open.
    std::vector<std::string> command;
    std::string windowClass; ///< StartupWMClass; empty where it has none
    bool visible = true;     ///< shown in menus
    bool removed = false;    ///< stands for there being no such application
};

/// Reads an entry's file. Absent when it is not that of an application.
/// @param languages the best first, as in the keys ("de_AT", "de")
[[nodiscard]] std::optional<DesktopEntry>
parseDesktopEntry(std::string_view text, const std::vector<std::string>& languages);

/// The words of an Exec key's value, unquoted and without field codes.
[[nodiscard]] std::vector<std::string> splitCommand(std::string_view command);

} // namespace lumetry
