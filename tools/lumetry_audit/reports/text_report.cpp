#include "lumetry_audit/reports/report.h"

#include "base/color_metrics.h"
#include "base/number_text.h"
#include "base/text.h"
#include "lumetry_audit/reports/wording.h"

#include <sstream>
#include <string_view>

namespace lumetry {
namespace {

template<typename Values, typename Text>
void addInventory(std::ostringstream& out, std::string_view what, const Values& values,
                  Text textOf) {
    constexpr std::size_t most = 12;
    constexpr std::size_t labelWidth = 9;
    if (values.empty()) {
        return;
    }
    std::string label(what);
    label.resize(labelWidth, ' ');
    out << label;
    std::size_t shown = 0;
    for (const auto& value : values) {
        if (shown == most) {
            out << "; " << values.size() - shown << " more";
            break;
        }
        out << (shown++ > 0 ? "; " : "") << textOf(value) << " (" << value.count << ")";
    }
    out << '\n';
}

void addFinding(std::ostringstream& out, const Finding& finding) {
    std::string severity(finding.baseline ? "known" : severityName(finding.severity));
    constexpr std::size_t severityWidth = 9;
    severity.resize(severityWidth, ' ');
    out << "  " << severity << onOneLine(finding.header) << ": " << onOneLine(finding.value)
        << ", wanted " << onOneLine(finding.wanted) << '\n'
        << "           " << boxText(finding.box) << "\n           " << finding.path << '\n';
}

} // namespace

std::string textReport(const AuditReport& report) {
    const WindowAudit& audit = report.audit;
    std::ostringstream out;
    out << "\"" << onOneLine(audit.title) << "\" of " << onOneLine(audit.app) << ", "
        << boxText(audit.window) << ", scale " << audit.scale << '\n'
        << audit.components.size() << " components measured, of " << audit.elements << " elements";
    if (const auto leftOut = leftOutText(audit.leftOut); !leftOut.empty()) {
        out << "; left out: " << leftOut;
    }
    if (audit.unknownTextColors > 0) {
        out << "; without known colours: " << audit.unknownTextColors << " texts";
    }
    out << '\n';
    if (const auto shortfall = shortfallText(audit); !shortfall.empty()) {
        out << "Note: " << shortfall << '\n';
    }
    for (auto finding = report.findings.begin(); finding != report.findings.end();) {
        const Rule rule = finding->rule;
        std::vector<Finding> alike;
        for (; finding != report.findings.end() && finding->rule == rule; ++finding) {
            alike.push_back(*finding);
        }
        out << '\n'
            << ruleTitle(describe(rule, report.enhanced)) << ": " << countText(alike) << '\n';
        for (const Finding& one : alike) {
            addFinding(out, one);
        }
    }
    out << '\n';
    const Inventory& inventory = report.inventory;
    addInventory(out, "palette", inventory.palette, [](const PaletteColor& color) {
        return hexString(color.color) + " " + usesText(color);
    });
    addInventory(out, "type", inventory.type,
                 [](const auto& counted) { return onOneLine(typefaceText(counted.value)); });
    addInventory(out, "radii", inventory.radii,
                 [](const auto& counted) { return std::to_string(counted.value) + "px"; });
    addInventory(out, "spacing", inventory.spacing,
                 [](const auto& counted) { return counted.value; });
    out << "\nFound: " << countText(report.findings);
    if (report.ignored > 0) {
        out << "; " << report.ignored << " ignored";
    }
    out << ".\n";
    return out.str();
}

} // namespace lumetry
