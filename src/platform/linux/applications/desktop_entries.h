#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
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

/// The desktop entries of the system and the user. Read when they are first asked for, and again
/// when something was installed or removed.
class DesktopEntries {
public:
    DesktopEntries(std::vector<std::filesystem::path> dataFolders,
                   std::vector<std::string> languages)
        : dataFolders_(std::move(dataFolders)), languages_(std::move(languages)) {}

    /// Reads them anew if a folder has changed; whether it did.
    bool refresh();
    [[nodiscard]] const std::vector<DesktopEntry>& all() const { return entries_; }
    /// Null when there is none.
    [[nodiscard]] const DesktopEntry* find(std::string_view id) const;
    /// The id that the file of an entry stands for: its path below a folder of entries, with
    /// dashes for slashes; of a file elsewhere its name.
    [[nodiscard]] std::string idOf(const std::filesystem::path& file) const;

private:
    using Changes = std::map<std::filesystem::path, std::filesystem::file_time_type>;

    [[nodiscard]] bool isUnchanged() const;
    void readFolder(const std::filesystem::path& folder);
    void readEntry(const std::filesystem::path& file, const std::string& id);

    std::vector<std::filesystem::path> dataFolders_;
    std::vector<std::string> languages_;
    bool read_ = false;
    Changes changed_; ///< when each folder was last changed
    std::vector<DesktopEntry> entries_;
    std::map<std::string, std::size_t, std::less<>> placeById_;
};

} // namespace lumetry
