#pragma once

#include "audit/finding.h"
#include "audit/palette.h"
#include "audit/window_audit.h"

#include <string>
#include <string_view>

namespace lumetry {

/// Such as "contrast (WCAG 2.2, 1.4.3)".
[[nodiscard]] std::string ruleTitle(const RuleDescription& description);
[[nodiscard]] std::string_view severityName(Severity severity);
/// Such as "2 errors, 1 warning" and, of those known before, "1 known"; "nothing" for none.
[[nodiscard]] std::string countText(const std::vector<Finding>& findings);
/// Such as "80 × 24 at 12, 40".
[[nodiscard]] std::string boxText(const Rect& box);
/// Such as "37 hidden, 12 scrolled or clipped away"; empty for none.
[[nodiscard]] std::string leftOutText(const LeftOut& leftOut);
/// Says that only a part of the window was audited, in one sentence; empty when all of it was.
[[nodiscard]] std::string shortfallText(const WindowAudit& audit);
/// Such as "14px Inter bold".
[[nodiscard]] std::string typefaceText(const Typeface& typeface);
/// Such as "≈ fill, text".
[[nodiscard]] std::string usesText(const PaletteColor& color);

} // namespace lumetry
