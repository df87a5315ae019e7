#include "platform/linux/applications/desktop_entries.h"

#include "base/text.h"
#include "platform/linux/system/file_system.h"

#include <algorithm>
#include <system_error>

namespace lumetry {
namespace {

using Keys = std::map<std::string, std::string, std::less<>>;

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

/// The keys of the group that describes the entry itself; others are of its actions.
Keys mainGroup(std::string_view text) {
    Keys keys;
    bool inGroup = false;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = withoutBlanks(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.starts_with('[')) {
            inGroup = line == "[Desktop Entry]";
        } else if (const std::size_t equals = line.find('=');
                   inGroup && !line.starts_with('#') && equals != std::string_view::npos) {
            keys.emplace(withoutBlanks(line.substr(0, equals)),
                         withoutBlanks(line.substr(equals + 1)));
        }
    }
    return keys;
}

std::string unescaped(std::string_view value) {
    std::string result;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] != '\\' || at + 1 == value.size()) {
            result += value[at];
            continue;
        }
        switch (const char escaped = value[++at]; escaped) {
        case 's':
            result += ' ';
            break;
        case 'n':
            result += '\n';
            break;
        case 't':
            result += '\t';
            break;
        case 'r':
            result += '\r';
            break;
        case '\\':
            result += '\\';
            break;
        default:
            result += '\\';
            result += escaped;
        }
    }
    return result;
}

std::string valueOf(const Keys& keys, std::string_view key) {
    const auto found = keys.find(key);
    return found == keys.end() ? std::string() : unescaped(found->second);
}

std::string localizedName(const Keys& keys, const std::vector<std::string>& languages) {
    for (const std::string& language : languages) {
        std::string name = valueOf(keys, "Name[" + language + "]");
        if (!name.empty()) {
            return name;
        }
    }
    return valueOf(keys, "Name");
}

namespace fs = std::filesystem;

constexpr std::string_view entrySuffix = ".desktop";

fs::file_time_type changeTime(const fs::path& folder) {
    std::error_code error;
    const auto time = fs::last_write_time(folder, error);
    return error ? fs::file_time_type::min() : time;
}

std::string idBelow(const fs::path& folder, const fs::path& file) {
    std::string id = file.lexically_relative(folder).string();
    id.resize(id.size() - entrySuffix.size());
    std::ranges::replace(id, '/', '-');
    return id;
}

} // namespace

std::vector<std::string> splitCommand(std::string_view command) {
    std::vector<std::string> words;
    std::optional<std::string> word;
    bool quoted = false;
    for (std::size_t at = 0; at < command.size(); ++at) {
        const char letter = command[at];
        if (letter == '"') {
            quoted = !quoted;
            word = word.value_or("");
        } else if (quoted && letter == '\\' && at + 1 < command.size()) {
            *word += command[++at];
        } else if (!quoted && (letter == ' ' || letter == '\t')) {
            if (word) {
                words.push_back(std::move(*word));
            }
            word.reset();
        } else if (letter == '%' && at + 1 < command.size()) {
            // A field code is left out, and the word with it when it is nothing else.
            if (command[++at] == '%') {
                word = word.value_or("") + '%';
            }
        } else {
            word = word.value_or("") + letter;
        }
    }
    if (word) {
        words.push_back(std::move(*word));
    }
    return words;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                              const std::vector<std::string>& languages) {
    const std::string wellFormed = validUtf8(text);
    const Keys keys = mainGroup(wellFormed);
    const bool removed = valueOf(keys, "Hidden") == "true";
    if (valueOf(keys, "Type") != "Application" && !removed) {
        return std::nullopt;
    }
    DesktopEntry entry;
    entry.name = localizedName(keys, languages);
    entry.command = splitCommand(valueOf(keys, "Exec"));
    entry.windowClass = valueOf(keys, "StartupWMClass");
    entry.visible = valueOf(keys, "NoDisplay") != "true";
    entry.removed = removed;
    return entry;
}

bool DesktopEntries::refresh() {
    if (read_ && isUnchanged()) {
        return false;
    }
    read_ = true;
    changed_.clear();
    entries_.clear();
    placeById_.clear();
    for (const fs::path& folder : dataFolders_) {
        readFolder(folder / "applications");
    }
    std::erase_if(entries_, [](const DesktopEntry& entry) { return entry.removed; });
    placeById_.clear();
    for (std::size_t place = 0; place < entries_.size(); ++place) {
        placeById_.emplace(entries_[place].id, place);
    }
    return true;
}

bool DesktopEntries::isUnchanged() const {
    return std::ranges::all_of(changed_, [](const Changes::value_type& known) {
        return changeTime(known.first) == known.second;
    });
}

void DesktopEntries::readFolder(const fs::path& folder) {
    changed_[folder] = changeTime(folder);
    std::vector<fs::path> files;
    std::error_code error;
    for (fs::recursive_directory_iterator
             entry(folder, fs::directory_options::skip_permission_denied, error),
         end;
         !error && entry != end; entry.increment(error)) {
        std::error_code unreadable;
        if (entry->is_directory(unreadable)) {
            changed_[entry->path()] = changeTime(entry->path());
        } else if (entry->path().extension() == entrySuffix) {
            files.push_back(entry->path());
        }
    }
    std::ranges::sort(files);
    for (const fs::path& file : files) {
        readEntry(file, idBelow(folder, file));
    }
}

void DesktopEntries::readEntry(const fs::path& file, const std::string& id) {
    constexpr std::size_t longestEntryBytes = 1 << 20;
    if (placeById_.contains(id)) {
        return;
    }
    const auto text = readFile(file, longestEntryBytes);
    auto entry = text ? parseDesktopEntry(*text, languages_) : std::nullopt;
    if (entry) {
        entry->id = id;
        placeById_.emplace(id, entries_.size());
        entries_.push_back(std::move(*entry));
    }
}

const DesktopEntry* DesktopEntries::find(std::string_view id) const {
    const auto place = placeById_.find(id);
    return place == placeById_.end() ? nullptr : &entries_[place->second];
}

std::string DesktopEntries::idOf(const fs::path& file) const {
    for (const fs::path& data : dataFolders_) {
        const fs::path folder = data / "applications";
        const fs::path below = file.lexically_relative(folder);
        if (!below.empty() && *below.begin() != ".." && file.extension() == entrySuffix) {
            return idBelow(folder, file);
        }
    }
    return file.extension() == entrySuffix ? file.stem().string() : file.filename().string();
}

} // namespace lumetry
