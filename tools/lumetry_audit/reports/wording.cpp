#include "lumetry_audit/reports/wording.h"

#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumetry {
namespace {

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void addTo(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

} // namespace

std::string ruleTitle(const RuleDescription& description) {
    std::string title(description.identifier);
    if (!description.criterion.empty()) {
        title.append(" (WCAG 2.2, ").append(description.criterion).append(")");
    }
    return title;
}

std::string_view severityName(Severity severity) {
    return severity == Severity::error ? "error" : "warning";
}

std::string countText(const std::vector<Finding>& findings) {
    const auto count = [&](Severity severity) {
        return static_cast<std::size_t>(std::ranges::count_if(findings, [&](const Finding& one) {
            return !one.baseline && one.severity == severity;
        }));
    };
    const auto known =
        static_cast<std::size_t>(std::ranges::count_if(findings, &Finding::baseline));
    std::string text;
    if (const auto errors = count(Severity::error); errors > 0) {
        addTo(text, plural(errors, "error"));
    }
    if (const auto warnings = count(Severity::warning); warnings > 0) {
        addTo(text, plural(warnings, "warning"));
    }
    if (known > 0) {
        addTo(text, std::to_string(known) + " known");
    }
    return text.empty() ? "nothing" : text;
}

std::string boxText(const Rect& box) {
    return wholeNumber(box.width) + " × " + wholeNumber(box.height) + " at " + wholeNumber(box.x) +
           ", " + wholeNumber(box.y);
}

std::string leftOutText(const LeftOut& leftOut) {
    const std::array<std::pair<std::size_t, const char*>, 5> counts = {
        {{leftOut.hidden, "hidden"},
         {leftOut.clipped, "scrolled or clipped away"},
         {leftOut.covered, "covered"},
         {leftOut.offScreen, "off the screen"},
         {leftOut.beyondLimit, "beyond the limit"}}};
    std::string text;
    for (const auto& [count, why] : counts) {
        if (count > 0) {
            addTo(text, std::to_string(count) + " " + why);
        }
    }
    return text;
}

std::string shortfallText(const WindowAudit& audit) {
    const std::size_t beyond = audit.leftOut.beyondLimit;
    if (beyond == 0 && !audit.cutOff) {
        return "";
    }
    return "only a part of the window was audited: " +
           (audit.cutOff ? "it has too many elements."
                         : plural(beyond, "element") + " beyond the limit; raise it with --limit.");
}

std::string typefaceText(const Typeface& typeface) {
    return wholeNumber(typeface.size) + "px " + typeface.family + (typeface.bold ? " bold" : "");
}

std::string usesText(const PaletteColor& color) {
    std::string text;
    if (color.isFill) {
        addTo(text, "fill");
    }
    if (color.isText) {
        addTo(text, "text");
    }
    return color.estimated ? "≈ " + text : text;
}

} // namespace lumetry
