#pragma once

#include "platform/linux/applications/desktop_entries.h"
#include "platform/linux/system/process_info.h"
#include "platform/linux/system/system_places.h"

#include <string>
#include <vector>

namespace lumetry {

/// Which application a process is.
struct ApplicationMatch {
    std::string id;                      ///< of a desktop entry; empty when nothing tells
    const DesktopEntry* entry = nullptr; ///< null where none of that id is installed
};

/// By what surely names it first, and by likeness last.
/// @param windowClasses what its windows call it
[[nodiscard]] ApplicationMatch matchApplication(const ProcessInfo& process,
                                                const std::vector<std::string>& windowClasses,
                                                const DesktopEntries& entries,
                                                const SystemPlaces& places);

} // namespace lumetry
