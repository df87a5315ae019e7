#include "audit/rules.h"

#include "base/color_metrics.h"
#include "base/number_text.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <tuple>
#include <utility>

namespace lumetry {
namespace {

constexpr std::array descriptions = std::to_array<RuleDescription>({
    {Rule::contrast, "contrast", "1.4.3",
     "Text stands out from what it is on by at least the ratio that its size asks for.",
     "https://www.w3.org/WAI/WCAG22/Understanding/contrast-minimum.html"},
    {Rule::contrast, "contrast", "1.4.6",
     "Text stands out clearly from what it is on, by the ratio that its size asks for.",
     "https://www.w3.org/WAI/WCAG22/Understanding/contrast-enhanced.html"},
    {Rule::targetSize, "target-size", "2.5.8",
     "What is clicked is large enough for a finger, or has room around it.",
     "https://www.w3.org/WAI/WCAG22/Understanding/target-size-minimum.html"},
    {Rule::name, "name", "4.1.2",
     "Controls, input fields and images have a title that can be read out.",
     "https://www.w3.org/WAI/WCAG22/Understanding/name-role-value.html"},
    {Rule::textSize, "text-size", "", "Text is large enough to be read.", ""},
    {Rule::consistency, "consistency", "",
     "Colours, sizes and gaps that are meant to be equal are equal.", ""},
});

/// What is switched off is none.
bool isTarget(const Component& component) {
    return component.enabled &&
           (component.bucket == Bucket::control || component.bucket == Bucket::input);
}

double largeContrast(const Thresholds& thresholds) {
    return thresholds.largeContrast.value_or(thresholds.enhanced ? 4.5 : 3.0);
}

/// Applications tell whole points: what is just as large as large text is told as 19.
bool isLarge(const Typeface& typeface) {
    constexpr double largeSize = 24;
    constexpr double largeBoldSize = 18.66;
    return typeface.size >= largeSize || (typeface.bold && typeface.size >= largeBoldSize);
}

/// Of a text whose size is not told.
bool mayBeLarge(const Component& component) {
    constexpr double leastHeight = 19;
    return !component.typeface && component.frame.height >= leastHeight;
}

double contrastWanted(const Component& component, const Thresholds& thresholds) {
    return component.typeface && isLarge(*component.typeface)
               ? largeContrast(thresholds)
               : thresholds.contrast.value_or(thresholds.enhanced ? 7.0 : 4.5);
}

/// A ratio cut after two decimals, so that none seems to be what it just falls short of.
std::string ratioText(double ratio) {
    constexpr double steps = 100;
    return fixedText(std::floor(ratio * steps) / steps, 2) + ":1";
}

/// A threshold, without decimals that say nothing.
std::string thresholdText(double value) {
    std::string text = fixedText(value, 2);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

/// The circle that an undersized target is to have for itself, against another's frame.
bool circleMeets(Point centre, double radius, const Rect& frame) {
    const double dx = std::max({frame.minX() - centre.x, centre.x - frame.maxX(), 0.0});
    const double dy = std::max({frame.minY() - centre.y, centre.y - frame.maxY(), 0.0});
    return std::hypot(dx, dy) < radius;
}

} // namespace

const RuleDescription& describe(Rule rule, bool enhanced) {
    const auto* const found = std::ranges::find(descriptions, rule, &RuleDescription::rule);
    return enhanced && rule == Rule::contrast ? *std::next(found) : *found;
}

Finding findingAbout(const Component& component, Rule rule, Severity severity) {
    Finding finding;
    finding.rule = rule;
    finding.severity = severity;
    finding.header = component.header;
    finding.role = removingOccurrences(component.role, "AX");
    finding.title = component.title;
    finding.path = component.path;
    finding.box = component.frame;
    return finding;
}

std::vector<Finding> contrastFindings(std::span<const Component> components,
                                      const Thresholds& thresholds) {
    constexpr double roundingError = 1e-9;
    std::vector<Finding> findings;
    for (const Component& component : components) {
        const auto& color = component.textColor;
        const auto& fill = component.measures.surface.fill;
        if (!component.showsText || !component.enabled || !color || !fill) {
            continue;
        }
        const double wanted = contrastWanted(component, thresholds);
        const double ratio = wcagContrast(*color, *fill);
        if (ratio >= wanted - roundingError) {
            continue;
        }
        const bool estimated = component.textColorIsEstimated || !component.evenFill;
        const double leastWanted = mayBeLarge(component) ? largeContrast(thresholds) : wanted;
        const bool certain = ratio < leastWanted - (estimated ? thresholds.estimateMargin : 0);
        Finding finding =
            findingAbout(component, Rule::contrast, certain ? Severity::error : Severity::warning);
        finding.value = (estimated ? "≈ " : "") + ratioText(ratio) + " (" + hexString(*color) +
                        " on " + hexString(*fill) + ")";
        finding.wanted = thresholdText(wanted) + ":1";
        finding.estimated = estimated;
        findings.push_back(std::move(finding));
    }
    return findings;
}

std::vector<Finding> targetSizeFindings(std::span<const Component> components,
                                        const Thresholds& thresholds) {
    const double least = thresholds.targetSize;
    const auto isUndersized = [least](const Component& component) {
        return component.frame.width < least || component.frame.height < least;
    };
    std::vector<const Component*> targets;
    for (const Component& component : components) {
        if (isTarget(component) || (component.enabled && component.role == "AXLink")) {
            targets.push_back(&component);
        }
    }
    // Only those whose circles may reach each other are compared.
    std::ranges::stable_sort(targets, {}, [](const Component* one) { return one->frame.midY(); });
    const double tallest =
        targets.empty() ? 0 : (*std::ranges::max_element(targets, {}, [](const Component* one) {
                                  return one->frame.height;
                              }))->frame.height;
    const auto hasRoom = [&](const Component& component) {
        const Rect& frame = component.frame;
        const Point centre = {frame.midX(), frame.midY()};
        const double reach = least + tallest / 2;
        const auto first = std::ranges::lower_bound(
            targets, centre.y - reach, {}, [](const Component* one) { return one->frame.midY(); });
        for (auto other = first; other != targets.end(); ++other) {
            const Rect& others = (*other)->frame;
            if (others.midY() > centre.y + reach) {
                break;
            }
            if (*other == &component) {
                continue;
            }
            if (circleMeets(centre, least / 2, others) ||
                (isUndersized(**other) &&
                 std::hypot(others.midX() - centre.x, others.midY() - centre.y) < least)) {
                return false;
            }
        }
        return true;
    };
    std::vector<Finding> findings;
    for (const Component& component : components) {
        if (isTarget(component) && isUndersized(component) && !hasRoom(component)) {
            Finding finding = findingAbout(component, Rule::targetSize, Severity::error);
            finding.value = sizeRow(component.frame.size()).value;
            finding.wanted = sizeRow({least, least}).value + ", or as much room";
            findings.push_back(std::move(finding));
        }
    }
    return findings;
}

std::vector<Finding> nameFindings(std::span<const Component> components) {
    std::vector<Finding> findings;
    for (const Component& component : components) {
        if ((isTarget(component) || component.role == "AXImage") && component.title.empty()) {
            Finding finding = findingAbout(component, Rule::name, Severity::error);
            finding.value = "no title";
            finding.wanted = "a title";
            findings.push_back(std::move(finding));
        }
    }
    return findings;
}

std::vector<Finding> textSizeFindings(std::span<const Component> components,
                                      const Thresholds& thresholds) {
    std::vector<Finding> findings;
    for (const Component& component : components) {
        if (component.showsText && component.typeface &&
            component.typeface->size < thresholds.textSize) {
            Finding finding = findingAbout(component, Rule::textSize, Severity::error);
            finding.value = thresholdText(component.typeface->size) + "px";
            finding.wanted = thresholdText(thresholds.textSize) + "px";
            findings.push_back(std::move(finding));
        }
    }
    return findings;
}

std::vector<Finding> findingsOf(const WindowAudit& audit, const Thresholds& thresholds) {
    std::vector<Finding> findings;
    const auto add = [&](Rule rule, std::vector<Finding> found) {
        if (!thresholds.off.contains(rule)) {
            std::ranges::move(found, std::back_inserter(findings));
        }
    };
    add(Rule::contrast, contrastFindings(audit.components, thresholds));
    add(Rule::targetSize, targetSizeFindings(audit.components, thresholds));
    add(Rule::name, nameFindings(audit.components));
    add(Rule::textSize, textSizeFindings(audit.components, thresholds));
    add(Rule::consistency, consistencyFindings(audit, thresholds));
    std::ranges::stable_sort(findings, {}, [](const Finding& one) {
        return std::tuple(one.rule, one.severity, one.box.y, one.box.x);
    });
    return findings;
}

} // namespace lumetry
