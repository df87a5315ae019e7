#include "shared/json.h"

#include <cmath>

namespace lumetry {

Json jsonNumber(double value) {
    constexpr double largestWhole = 1e15;
    if (!std::isfinite(value)) {
        return nullptr;
    }
    if (value == std::round(value) && std::abs(value) < largestWhole) {
        return static_cast<long long>(value);
    }
    return value;
}

Json jsonRect(const std::optional<Rect>& rect) {
    if (!rect) {
        return nullptr;
    }
    return Json::array({jsonNumber(rect->x), jsonNumber(rect->y), jsonNumber(rect->width),
                        jsonNumber(rect->height)});
}

std::string dumped(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace lumetry
