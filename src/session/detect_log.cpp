#include "session/detect_log.h"

#include "platform/defaults.h"
#include "platform/file_system.h"

namespace lumetry {

bool DetectLog::on() {
    if (!on_) {
        on_ = defaults_.boolForKey("lumetry.debug");
    }
    return *on_;
}

void DetectLog::append(std::string_view line) {
    fileSystem_.appendPrivately(std::string(url), line);
}

} // namespace lumetry
