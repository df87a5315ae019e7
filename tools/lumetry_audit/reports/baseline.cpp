#include "lumetry_audit/reports/baseline.h"

#include "lumetry_audit/reports/files.h"
#include "shared/json.h"

#include <array>
#include <cstddef>
#include <utility>

namespace lumetry {
namespace {

constexpr int version = 1;

/// What a finding's key is written as.
constexpr std::array keyNames = {"rule", "kind", "path"};

std::optional<FindingKey> keyIn(const Json& finding) {
    FindingKey key;
    for (std::size_t part = 0; part < key.size(); ++part) {
        const auto found = finding.is_object() ? finding.find(keyNames[part]) : finding.end();
        if (found == finding.end() || !found->is_string()) {
            return std::nullopt;
        }
        key[part] = *found;
    }
    return key;
}

} // namespace

std::optional<Baseline> readBaseline(const std::filesystem::path& file, std::string& problem) {
    const auto text = readFile(file);
    if (!text) {
        problem = file.string() + " cannot be read; make it with --write-baseline.";
        return std::nullopt;
    }
    const Json json = Json::parse(*text, nullptr, false);
    if (!json.is_object() || !json.contains("version") || json["version"] != version ||
        !json.contains("findings") || !json["findings"].is_array()) {
        problem = file.string() + " is no baseline; make it anew with --write-baseline.";
        return std::nullopt;
    }
    Baseline baseline;
    for (const Json& finding : json["findings"]) {
        auto key = keyIn(finding);
        if (!key) {
            problem = file.string() + " has a finding without rule, kind and path; make it anew "
                                      "with --write-baseline.";
            return std::nullopt;
        }
        baseline.insert(std::move(*key));
    }
    return baseline;
}

bool writeBaseline(const std::filesystem::path& file, std::span<const Finding> findings,
                   std::string& problem) {
    Json list = Json::array();
    for (const Finding& finding : findings) {
        const FindingKey key = keyOf(finding);
        Json entry;
        for (std::size_t part = 0; part < key.size(); ++part) {
            entry[keyNames[part]] = key[part];
        }
        list.push_back(std::move(entry));
    }
    return writeFile(file, dumped({{"version", version}, {"findings", std::move(list)}}), problem);
}

void apply(const Baseline& baseline, std::vector<Finding>& findings) {
    for (Finding& finding : findings) {
        finding.baseline = baseline.contains(keyOf(finding));
    }
}

} // namespace lumetry
