#include "reading.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <utility>

namespace lumetry::accuracy {
namespace {

/// The last part of "Inter · 14px · semibold"; absent where the font has only the first two.
std::optional<std::string> weightIn(const std::string& font) {
    constexpr std::string_view sizeEnd = "px · ";
    const auto found = font.rfind(sizeEnd);
    return found == std::string::npos ? std::nullopt
                                      : std::optional(font.substr(found + sizeEnd.size()));
}

Reading measureOnce(const desktop::PrivateDesktop& desktop, Point at) {
    constexpr int nothingThere = 1;
    desktop::ProcessOptions options;
    options.environment = desktop.environment();
    const auto finished = desktop::runProgram(
        {LUMETRY_MEASURE, "--json", std::to_string(at.x), std::to_string(at.y)}, options);
    if (finished.status.code.value_or(-1) > nothingThere || !finished.status.code) {
        throw std::runtime_error("lumetry-measure: " + finished.error);
    }
    const auto json = nlohmann::json::parse(finished.output);
    Reading reading;
    reading.header = json.at("header");
    for (const auto& row : json.at("rows")) {
        reading.rows.insert_or_assign(row.at("label"), row.at("value"));
    }
    const auto font = reading.value("font");
    if (const auto weight = font ? weightIn(*font) : std::nullopt) {
        reading.rows.insert_or_assign("weight", *weight);
    }
    return reading;
}

} // namespace

std::optional<std::string> Reading::value(const std::string& label) const {
    const auto found = rows.find(label);
    return found == rows.end() ? std::nullopt : std::optional(found->second);
}

Reading measure(const desktop::PrivateDesktop& desktop, Point at) {
    constexpr int mostAttempts = 6;
    Reading reading = measureOnce(desktop, at);
    for (int attempt = 1; attempt < mostAttempts; ++attempt) {
        Reading again = measureOnce(desktop, at);
        if (again == reading) {
            break;
        }
        reading = std::move(again);
    }
    return reading;
}

} // namespace lumetry::accuracy
