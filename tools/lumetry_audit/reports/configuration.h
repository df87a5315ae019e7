#pragma once

#include "audit/finding.h"
#include "audit/rules.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// Findings that are not to be reported. Absent: any. Texts are shell patterns.
struct Ignored {
    std::optional<Rule> rule;
    std::optional<std::string> role;  ///< as reports say it, such as "Button"
    std::optional<std::string> title; ///< the whole title, however much of it reports say
    std::optional<std::string> path;
    std::string reason;

    [[nodiscard]] bool matches(const Finding& finding) const;
};

/// From which findings on the status is not 0.
enum class FailOn : std::uint8_t { error, warning, never };

/// What an audit looks for.
struct Configuration {
    Thresholds thresholds;
    std::vector<Ignored> ignored;
    FailOn failOn = FailOn::error;
    std::size_t limit = 5000;
};

/// The rule with that identifier; absent for none.
[[nodiscard]] std::optional<Rule> ruleNamed(const std::string& identifier);
[[nodiscard]] std::optional<FailOn> failOnNamed(const std::string& name);

/// Reads a file in TOML.
/// @param problem what is wrong with it and in which line, in one sentence; then the configuration
/// is absent
[[nodiscard]] std::optional<Configuration> readConfiguration(const std::filesystem::path& file,
                                                             std::string& problem);

} // namespace lumetry
