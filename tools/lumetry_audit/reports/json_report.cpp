#include "lumetry_audit/reports/report.h"

#include "base/color_metrics.h"
#include "lumetry_audit/reports/wording.h"
#include "shared/json.h"

#include <utility>

namespace lumetry {
namespace {

Json jsonFinding(const Finding& finding) {
    return {{"rule", describe(finding.rule).identifier},
            {"kind", finding.kind.empty() ? Json() : Json(finding.kind)},
            {"severity", severityName(finding.severity)},
            {"header", finding.header},
            {"path", finding.path},
            {"box", jsonRect(finding.box)},
            {"value", finding.value},
            {"wanted", finding.wanted},
            {"estimated", finding.estimated},
            {"baseline", finding.baseline}};
}

Json jsonSummary(const Inventory& inventory) {
    Json palette = Json::array();
    for (const PaletteColor& color : inventory.palette) {
        Json uses = Json::array();
        if (color.isFill) {
            uses.push_back("fill");
        }
        if (color.isText) {
            uses.push_back("text");
        }
        palette.push_back({{"color", hexString(color.color)},
                           {"uses", std::move(uses)},
                           {"estimated", color.estimated},
                           {"count", color.count}});
    }
    Json type = Json::array();
    for (const auto& [face, count] : inventory.type) {
        type.push_back({{"family", face.family},
                        {"size", jsonNumber(face.size)},
                        {"bold", face.bold},
                        {"count", count}});
    }
    Json radii = Json::array();
    for (const auto& [radius, count] : inventory.radii) {
        radii.push_back({{"radius", radius}, {"count", count}});
    }
    Json spacing = Json::array();
    for (const auto& [value, count] : inventory.spacing) {
        spacing.push_back({{"value", value}, {"count", count}});
    }
    return {{"palette", std::move(palette)},
            {"type", std::move(type)},
            {"radii", std::move(radii)},
            {"spacing", std::move(spacing)}};
}

} // namespace

std::string jsonReport(const AuditReport& report) {
    const WindowAudit& audit = report.audit;
    Json findings = Json::array();
    for (const Finding& finding : report.findings) {
        findings.push_back(jsonFinding(finding));
    }
    const LeftOut& leftOut = audit.leftOut;
    return dumped({{"app", audit.app},
                   {"window", {{"title", audit.title}, {"box", jsonRect(audit.window)}}},
                   {"scale", jsonNumber(audit.scale)},
                   {"elements", audit.elements},
                   {"leftOut",
                    {{"hidden", leftOut.hidden},
                     {"clipped", leftOut.clipped},
                     {"covered", leftOut.covered},
                     {"offScreen", leftOut.offScreen},
                     {"beyondLimit", leftOut.beyondLimit}}},
                   {"findings", std::move(findings)},
                   {"summary", jsonSummary(report.inventory)}});
}

} // namespace lumetry
