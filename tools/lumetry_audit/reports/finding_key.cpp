#include "lumetry_audit/reports/finding_key.h"

#include <string_view>

namespace lumetry {

FindingKey keyOf(const Finding& finding) {
    constexpr std::string_view separator = " / ";
    const auto end = finding.path.find(separator);
    return {std::string(describe(finding.rule).identifier), finding.kind,
            end == std::string::npos ? "" : finding.path.substr(end + separator.size())};
}

} // namespace lumetry
