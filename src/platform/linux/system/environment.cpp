#include "platform/linux/system/environment.h"

#include <cstdlib>
#include <utility>

namespace lumetry {

std::string environmentText(const char* name, std::string otherwise) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment meanwhile
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : std::move(otherwise);
}

} // namespace lumetry
