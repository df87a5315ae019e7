#include "lumetry_audit/reports/report.h"

#include "lumetry_audit/reports/wording.h"
#include "shared/json.h"

#include <QUrl>

#include <array>
#include <cstddef>
#include <utility>

namespace lumetry {
namespace {

constexpr std::array allRules = {Rule::contrast, Rule::targetSize, Rule::name, Rule::textSize,
                                 Rule::consistency};

Json ruleDescriptor(const RuleDescription& description) {
    const char* const level = description.rule == Rule::consistency ? "warning" : "error";
    Json descriptor = {{"id", description.identifier},
                       {"name", ruleTitle(description)},
                       {"shortDescription", {{"text", description.summary}}},
                       {"defaultConfiguration", {{"level", level}}}};
    if (!description.help.empty()) {
        descriptor["helpUri"] = description.help;
    }
    return descriptor;
}

/// Findings stand at the first line of the artifact: forges show none that stand nowhere in it.
Json location(const Finding& finding, const std::string& artifact) {
    return {{"physicalLocation",
             {{"artifactLocation", {{"uri", artifact}}}, {"region", {{"startLine", 1}}}}},
            {"logicalLocations", Json::array({{{"name", finding.header},
                                               {"fullyQualifiedName", finding.path},
                                               {"kind", "element"}}})}};
}

Json result(const Finding& finding, const std::string& artifact) {
    const std::string identifier(describe(finding.rule).identifier);
    return {{"ruleId", identifier},
            {"ruleIndex", static_cast<std::size_t>(finding.rule)},
            {"level", severityName(finding.severity)},
            {"message",
             {{"text", finding.header + ": " + finding.value + ", wanted " + finding.wanted + " (" +
                           finding.path + ")"}}},
            {"locations", Json::array({location(finding, artifact)})},
            {"partialFingerprints", {{"place/v1", identifier + " " + finding.path}}},
            {"baselineState", finding.baseline ? "unchanged" : "new"},
            {"properties",
             {{"box", jsonRect(finding.box)},
              {"value", finding.value},
              {"wanted", finding.wanted},
              {"estimated", finding.estimated}}}};
}

} // namespace

std::string sarifReport(const AuditReport& report, const std::string& artifact) {
    const std::string uri =
        QUrl::toPercentEncoding(QString::fromStdString(artifact), "/:").toStdString();
    Json rules = Json::array();
    for (const Rule rule : allRules) {
        rules.push_back(ruleDescriptor(describe(rule, report.enhanced)));
    }
    Json results = Json::array();
    for (const Finding& finding : report.findings) {
        results.push_back(result(finding, uri));
    }
    Json run = {{"tool",
                 {{"driver",
                   {{"name", "lumetry-audit"},
                    {"version", LUMETRY_VERSION},
                    {"semanticVersion", LUMETRY_VERSION},
                    {"informationUri", "https://lumetry.app"},
                    {"rules", std::move(rules)}}}}},
                {"results", std::move(results)}};
    return dumped({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                   {"version", "2.1.0"},
                   {"runs", Json::array({std::move(run)})}});
}

} // namespace lumetry
