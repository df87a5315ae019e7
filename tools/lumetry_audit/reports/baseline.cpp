#include "lumetry_audit/reports/baseline.h"

#include "lumetry_audit/reports/output_file.h"
#include "shared/json.h"

#include <fstream>

namespace lumetry {
namespace {

constexpr int version = 1;

} // namespace

std::optional<Baseline> readBaseline(const std::filesystem::path& file, std::string& problem) {
    std::ifstream stream(file);
    if (!stream) {
        problem = file.string() + " cannot be read; make it with --write-baseline.";
        return std::nullopt;
    }
    const Json json = Json::parse(stream, nullptr, false);
    const auto findings = json.is_object() ? json.find("findings") : json.end();
    if (!json.is_object() || json.value("version", 0) != version || findings == json.end() ||
        !findings->is_array()) {
        problem = file.string() + " is no baseline; make it anew with --write-baseline.";
        return std::nullopt;
    }
    Baseline baseline;
    for (const Json& finding : *findings) {
        if (!finding.is_object() || !finding.contains("rule") || !finding["rule"].is_string() ||
            !finding.contains("path") || !finding["path"].is_string()) {
            problem = file.string() + " has a finding without rule and path; make it anew with "
                                      "--write-baseline.";
            return std::nullopt;
        }
        baseline.emplace(finding["rule"], finding["path"]);
    }
    return baseline;
}

bool writeBaseline(const std::filesystem::path& file, std::span<const Finding> findings,
                   std::string& problem) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"rule", describe(finding.rule).identifier}, {"path", finding.path}});
    }
    return writeFile(file, dumped({{"version", version}, {"findings", std::move(list)}}), problem);
}

void apply(const Baseline& baseline, std::vector<Finding>& findings) {
    for (Finding& finding : findings) {
        finding.baseline =
            baseline.contains({std::string(describe(finding.rule).identifier), finding.path});
    }
}

} // namespace lumetry
