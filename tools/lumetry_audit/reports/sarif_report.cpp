#include "lumetry_audit/reports/report.h"

#include "lumetry_audit/reports/finding_key.h"
#include "lumetry_audit/reports/wording.h"
#include "shared/json.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QUrl>

#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumetry {
namespace {

constexpr std::array allRules = {Rule::contrast, Rule::targetSize, Rule::name, Rule::textSize,
                                 Rule::consistency};

/// Such as "TargetSize" of "target-size".
std::string pascalCase(std::string_view identifier) {
    std::string name;
    bool begins = true;
    for (const char letter : identifier) {
        if (letter != '-') {
            name += begins ? static_cast<char>(std::toupper(letter)) : letter;
        }
        begins = letter == '-';
    }
    return name;
}

/// What the findings are shown at, as a relative reference: the program in the project's folder,
/// the application, or the window.
std::string artifactOf(const AuditReport& report, const std::string& program) {
    const std::string& app = report.audit.app;
    const bool named = !app.empty() && !app.starts_with("pid:");
    std::string name = named ? app : report.audit.title;
    if (!program.empty()) {
        const std::filesystem::path path(program);
        std::error_code unclear;
        const auto local = path.is_absolute()
                               ? path.lexically_relative(std::filesystem::current_path(unclear))
                               : path.lexically_normal();
        const bool inside = !local.empty() && *local.begin() != "..";
        name = (inside ? local : path.filename()).string();
    }
    // Only a program's name has folders.
    const QByteArray kept = program.empty() ? "" : "/";
    const auto uri = QUrl::toPercentEncoding(QString::fromStdString(name), kept).toStdString();
    return uri.empty() ? "window" : uri;
}

/// The same for the same finding in every run, and different for different ones.
std::string fingerprintOf(const FindingKey& key, std::map<FindingKey, int>& occurrences) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const std::string& part : key) {
        hash.addData(QByteArray::fromStdString(part + "\n"));
    }
    constexpr std::size_t digits = 16;
    return hash.result().toHex().toStdString().substr(0, digits) + ":" +
           std::to_string(++occurrences[key]);
}

Json ruleDescriptor(const RuleDescription& description) {
    const char* const level = description.rule == Rule::consistency ? "warning" : "error";
    Json descriptor = {
        {"id", description.identifier},
        {"name", pascalCase(description.identifier)},
        {"shortDescription", {{"text", description.summary}}},
        {"fullDescription",
         {{"text", ruleTitle(description) + ": " + std::string(description.summary)}}},
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

Json resultOf(const Finding& finding, const std::string& artifact, const std::string& fingerprint) {
    return {{"ruleId", describe(finding.rule).identifier},
            {"ruleIndex", static_cast<std::size_t>(finding.rule)},
            {"level", severityName(finding.severity)},
            {"message",
             {{"text", finding.header + ": " + finding.value + ", wanted " + finding.wanted + " (" +
                           finding.path + ")"}}},
            {"locations", Json::array({location(finding, artifact)})},
            {"partialFingerprints", {{"primaryLocationLineHash", fingerprint}}},
            {"properties",
             {{"kind", finding.kind.empty() ? Json() : Json(finding.kind)},
              {"box", jsonRect(finding.box)},
              {"value", finding.value},
              {"wanted", finding.wanted},
              {"estimated", finding.estimated}}}};
}

} // namespace

std::string sarifReport(const AuditReport& report, const std::string& program) {
    const std::string artifact = artifactOf(report, program);
    Json rules = Json::array();
    for (const Rule rule : allRules) {
        rules.push_back(ruleDescriptor(describe(rule, report.enhanced)));
    }
    Json results = Json::array();
    std::map<FindingKey, int> occurrences;
    for (const Finding& finding : report.findings) {
        Json result = resultOf(finding, artifact, fingerprintOf(keyOf(finding), occurrences));
        if (report.hasBaseline) {
            result["baselineState"] = finding.baseline ? "unchanged" : "new";
        }
        results.push_back(std::move(result));
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
