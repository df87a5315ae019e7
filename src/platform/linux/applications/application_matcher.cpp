#include "platform/linux/applications/application_matcher.h"

#include "base/text.h"
#include "platform/linux/applications/programs.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <tuple>

namespace lumetry {
namespace {

/// The better of two entries that fit alike: one that is shown in menus, then the one that has been
/// first.
const DesktopEntry* preferred(const DesktopEntry* a, const DesktopEntry* b) {
    return a == nullptr || (b != nullptr && b->visible && !a->visible) ? b : a;
}

template<typename Fits>
const DesktopEntry* bestThat(const DesktopEntries& entries, Fits fits) {
    const DesktopEntry* best = nullptr;
    for (const DesktopEntry& entry : entries.all()) {
        if (fits(entry)) {
            best = preferred(best, &entry);
        }
    }
    return best;
}

std::string variable(const ProcessInfo& process, std::string_view name) {
    const auto found = process.environment.find(name);
    return found == process.environment.end() ? std::string() : found->second;
}

ApplicationMatch named(const std::string& id, const DesktopEntries& entries) {
    return {id, entries.find(id)};
}

/// Snap keeps each application in a group "snap.PACKAGE.APPLICATION-UUID.scope".
std::string snapId(const ProcessInfo& process, const DesktopEntries& entries) {
    constexpr std::string_view prefix = "snap.";
    const std::string& group = process.controlGroup;
    if (group.starts_with(prefix)) {
        const std::size_t dot = group.find('.', prefix.size());
        const std::size_t end = group.find_first_of(".-", dot + 1);
        if (dot != std::string::npos && end != std::string::npos) {
            // The application's name may have dashes itself; the unique part is 36 letters.
            constexpr std::size_t uniqueLength = std::string_view("-").size() + 36;
            const std::size_t last = group.rfind('.');
            const std::size_t stop = last > dot + uniqueLength && group[last - uniqueLength] == '-'
                                         ? last - uniqueLength
                                         : group.find('.', dot + 1);
            return group.substr(prefix.size(), dot - prefix.size()) + "_" +
                   group.substr(dot + 1, stop - dot - 1);
        }
    }
    const std::string package = variable(process, "SNAP_INSTANCE_NAME");
    // Another program that a snap has started keeps the variable, but does not lie in the snap.
    const std::string folder = variable(process, "SNAP");
    if (package.empty() || folder.empty() || !process.executable.string().starts_with(folder)) {
        return {};
    }
    const auto* entry = bestThat(
        entries, [&](const DesktopEntry& each) { return each.id.starts_with(package + "_"); });
    return entry != nullptr ? entry->id : package + "_" + package;
}

/// GLib tells a program which entry it was started by; what that starts in turn inherits the words.
std::string launchedId(const ProcessInfo& process, const DesktopEntries& entries) {
    const std::string file = variable(process, "GIO_LAUNCHED_DESKTOP_FILE");
    return !file.empty() &&
                   variable(process, "GIO_LAUNCHED_DESKTOP_FILE_PID") == std::to_string(process.pid)
               ? entries.idOf(file)
               : std::string();
}

/// As systemd writes what may not stand in a unit's name: "\x2d" is "-".
std::string unitNameUnescaped(std::string_view name) {
    constexpr std::string_view mark = "\\x";
    constexpr std::size_t length = 4;
    std::string result;
    while (!name.empty()) {
        unsigned char letter = 0;
        const char* digits = name.data() + mark.size();
        if (name.starts_with(mark) && name.size() >= length &&
            std::from_chars(digits, digits + 2, letter, 16).ptr == digits + 2) {
            result += static_cast<char>(letter);
            name.remove_prefix(length);
        } else {
            result += name.front();
            name.remove_prefix(1);
        }
    }
    return result;
}

/// Desktops start each application in a unit "app-LAUNCHER-ID-NUMBER.scope" or
/// "app-LAUNCHER-ID@NUMBER.service", the launcher being optional.
const DesktopEntry* entryOfUnit(const ProcessInfo& process, const DesktopEntries& entries) {
    constexpr std::string_view prefix = "app-";
    std::string_view unit = process.controlGroup;
    // A program that the application has started is in its unit, too.
    if (!unit.starts_with(prefix) || process.controlGroup == process.parentControlGroup) {
        return nullptr;
    }
    unit.remove_prefix(prefix.size());
    if (unit.ends_with(".scope")) {
        unit = unit.substr(0, unit.rfind('-'));
    } else {
        unit = unit.substr(0, unit.rfind('.'));
        unit = unit.substr(0, unit.find('@'));
    }
    const auto* whole = entries.find(unitNameUnescaped(unit));
    const std::size_t dash = unit.find('-');
    return whole != nullptr || dash == std::string_view::npos
               ? whole
               : entries.find(unitNameUnescaped(unit.substr(dash + 1)));
}

const DesktopEntry* entryOfWindowClass(const std::vector<std::string>& windowClasses,
                                       const DesktopEntries& entries) {
    const auto anyThat = [&](auto fits) {
        return bestThat(entries, [&](const DesktopEntry& entry) {
            return std::ranges::any_of(windowClasses, [&](const std::string& name) {
                return !name.empty() && fits(entry, name);
            });
        });
    };
    const auto* entry = anyThat(
        [](const DesktopEntry& each, const std::string& name) { return each.windowClass == name; });
    if (entry == nullptr) {
        entry = anyThat(
            [](const DesktopEntry& each, const std::string& name) { return each.id == name; });
    }
    if (entry == nullptr) {
        entry = anyThat([](const DesktopEntry& each, const std::string& name) {
            const std::string lower = lowerCase(name);
            return lowerCase(each.windowClass) == lower || lowerCase(each.id) == lower;
        });
    }
    return entry;
}

const DesktopEntry* entryOfProgram(const ProcessInfo& process, const DesktopEntries& entries,
                                   const SystemPlaces& places) {
    const Program running = programOfProcess(process);
    const DesktopEntry* best = nullptr;
    auto bestRank = std::tuple(ProgramMatch::none, false, false, 0L);
    for (const DesktopEntry& entry : entries.all()) {
        const auto program = programOfCommand(entry.command, places.programFolders);
        const auto match =
            program ? compareProgram(running, *program, places.programFolders) : ProgramMatch::none;
        if (match == ProgramMatch::none) {
            continue;
        }
        // One that passes other arguments than the process has is for another use of the program.
        const auto has = [&](const std::string& argument) {
            return std::ranges::find(running.arguments, argument) != running.arguments.end();
        };
        const bool fits = std::ranges::all_of(program->arguments, has);
        const auto common = static_cast<long>(program->arguments.size());
        const auto rank = std::tuple(match, fits, entry.visible, fits ? common : -common);
        if (best == nullptr || rank > bestRank) {
            best = &entry;
            bestRank = rank;
        }
    }
    return best;
}

} // namespace

ApplicationMatch matchApplication(const ProcessInfo& process,
                                  const std::vector<std::string>& windowClasses,
                                  const DesktopEntries& entries, const SystemPlaces& places) {
    if (!process.flatpakId.empty()) {
        return named(process.flatpakId, entries);
    }
    for (const std::string& id : {snapId(process, entries), launchedId(process, entries)}) {
        if (!id.empty()) {
            return named(id, entries);
        }
    }
    const auto* entry = entryOfUnit(process, entries);
    if (entry == nullptr) {
        entry = entryOfWindowClass(windowClasses, entries);
    }
    if (entry == nullptr) {
        entry = entryOfProgram(process, entries, places);
    }
    return entry != nullptr ? ApplicationMatch{entry->id, entry} : ApplicationMatch{};
}

} // namespace lumetry
