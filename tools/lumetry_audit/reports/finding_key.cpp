#include "lumetry_audit/reports/finding_key.h"

#include <string_view>

namespace lumetry {

namespace {

constexpr std::string_view separator = " / ";

/// The path without the window, and without the titles of pages, which windows have theirs from.
std::string placeOf(const std::string& path) {
    constexpr std::string_view page = " / WebArea";
    const auto end = path.find(separator);
    std::string place = end == std::string::npos ? "" : path.substr(end);
    for (auto at = place.find(page); at != std::string::npos; at = place.find(page, at)) {
        at += page.size();
        const auto next = place.find(separator, at);
        place.erase(at, next == std::string::npos ? next : next - at);
    }
    return place.empty() ? place : place.substr(separator.size());
}

} // namespace

FindingKey keyOf(const Finding& finding) {
    return {std::string(describe(finding.rule).identifier), finding.kind, placeOf(finding.path)};
}

} // namespace lumetry
