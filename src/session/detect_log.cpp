#include "session/detect_log.h"

#include "platform/defaults.h"
#include "platform/file_system.h"

#include <cstdlib>

namespace lumetry {

bool DetectLog::on() {
    if (!on_) {
        on_ = defaults_.boolForKey("lumetry.debug");
    }
    return *on_;
}

void DetectLog::append(std::string_view line) {
    const char* const other = std::getenv(urlVariable);
    const bool isNamed = other != nullptr && *other != '\0';
    fileSystem_.appendPrivately(isNamed ? other : std::string(url), line);
}

} // namespace lumetry
