#include "platform/linux/applications/desktop_entries.h"

#include "platform/linux/system/read_file.h"

#include <algorithm>
#include <system_error>

namespace lumetry {
namespace {

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
