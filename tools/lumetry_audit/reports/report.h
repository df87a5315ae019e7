#pragma once

#include "audit/finding.h"
#include "audit/palette.h"
#include "audit/window_audit.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lumetry {

/// An audited window and what is to be said of it.
struct AuditReport {
    WindowAudit audit;
    Inventory inventory;
    std::vector<Finding> findings; ///< by rule; without those that are ignored
    std::size_t ignored = 0;       ///< findings that the configuration says to ignore
    bool enhanced = false;         ///< contrast was held against WCAG's level AAA
    bool hasBaseline = false;      ///< what is known is marked
};

/// Findings grouped by rule, each with its place, value and what is wanted; then the inventory.
[[nodiscard]] std::string textReport(const AuditReport& report);

/// One JSON object: app, window, scale, elements, leftOut, findings, summary. Boxes as
/// [x, y, width, height] in points of accessibility space.
[[nodiscard]] std::string jsonReport(const AuditReport& report);

/// The findings as a log of the Static Analysis Results Interchange Format, version 2.1.0.
/// @param program that was started to be audited, which the findings are shown at; empty: at the
/// application
[[nodiscard]] std::string sarifReport(const AuditReport& report, const std::string& program);

/// A page that needs nothing else: the window's picture with the findings outlined and numbered,
/// the findings beside it, the inventory below.
[[nodiscard]] std::string htmlReport(const AuditReport& report);

} // namespace lumetry
