#pragma once

#include "audit/finding.h"
#include "lumetry_audit/reports/finding_key.h"

#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace lumetry {

/// Findings that are known.
using Baseline = std::set<FindingKey>;

/// @param problem what is wrong with the file, in one sentence; then the baseline is absent
[[nodiscard]] std::optional<Baseline> readBaseline(const std::filesystem::path& file,
                                                   std::string& problem);

/// Whether that worked.
/// @param problem then why not, in one sentence
[[nodiscard]] bool writeBaseline(const std::filesystem::path& file,
                                 std::span<const Finding> findings, std::string& problem);

/// Marks the findings that are known.
void apply(const Baseline& baseline, std::vector<Finding>& findings);

} // namespace lumetry
