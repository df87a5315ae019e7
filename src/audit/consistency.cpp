#include "audit/palette.h"
#include "audit/rules.h"

#include "base/color_difference.h"
#include "base/color_metrics.h"
#include "base/number_text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

Finding warningAbout(const Component& component, std::string kind) {
    Finding finding = findingAbout(component, Rule::consistency, Severity::warning);
    finding.kind = std::move(kind);
    return finding;
}

void addNearColors(std::vector<Finding>& findings, const WindowAudit& audit,
                   const Thresholds& thresholds) {
    // Estimates differ by themselves.
    std::vector<PaletteColor> colors = paletteOf(audit.components);
    std::erase_if(colors, [](const PaletteColor& one) { return one.estimated; });
    std::vector<Lab> labs;
    labs.reserve(colors.size());
    for (const PaletteColor& one : colors) {
        labs.push_back(labOf(one.color));
    }
    for (std::size_t second = 1; second < colors.size(); ++second) {
        // The nearest of the colours that are used more often.
        std::size_t nearest = second;
        double least = thresholds.colorDifference;
        for (std::size_t first = 0; first < second; ++first) {
            const double difference = colorDifference(labs[first], labs[second]);
            if (difference < least) {
                least = difference;
                nearest = first;
            }
        }
        if (nearest == second) {
            continue;
        }
        const PaletteColor& rare = colors[second];
        Finding finding = warningAbout(audit.components[rare.firstUse], "color");
        finding.value = "colour " + hexString(rare.color) + " beside " +
                        hexString(colors[nearest].color) + " (" +
                        std::to_string(colors[nearest].count) + " ×)";
        finding.wanted = "one colour, or two that can be told apart";
        finding.estimated = rare.isFill || colors[nearest].isFill;
        findings.push_back(std::move(finding));
    }
}

/// The numbers of a padding, such as "8px 16px".
std::vector<long> numbersOf(const std::string& padding) {
    std::vector<long> numbers;
    std::istringstream words(padding);
    for (std::string word; words >> word;) {
        numbers.push_back(std::strtol(word.c_str(), nullptr, 10));
    }
    return numbers;
}

/// By 1 or 2 points, as what is meant to be equal does.
bool differSlightly(double a, double b) {
    constexpr double least = 0.75; // at fractional scales points are not whole
    constexpr double most = 2.25;
    const double difference = std::abs(a - b);
    return difference >= least && difference <= most;
}

/// What differs a little between two controls.
struct Difference {
    std::string kind;
    std::string value; ///< in words
};

std::optional<Difference> slightDifference(const Component& a, const Component& b) {
    if (differSlightly(a.frame.height, b.frame.height)) {
        return Difference{"height", wholeNumber(a.frame.height) + "px beside " +
                                        wholeNumber(b.frame.height) + "px"};
    }
    const auto& radiusA = a.measures.surface.radius;
    const auto& radiusB = b.measures.surface.radius;
    if (radiusA && radiusB && differSlightly(*radiusA, *radiusB)) {
        return Difference{"radius", "≈ " + std::to_string(*radiusA) + "px beside " +
                                        std::to_string(*radiusB) + "px"};
    }
    if (a.measures.padding && b.measures.padding) {
        const auto paddingA = numbersOf(*a.measures.padding);
        const auto paddingB = numbersOf(*b.measures.padding);
        if (paddingA.size() == paddingB.size() &&
            std::ranges::equal(paddingA, paddingB,
                               [](long x, long y) { return std::abs(x - y) <= 2; }) &&
            paddingA != paddingB) {
            return Difference{"padding", *a.measures.padding + " beside " + *b.measures.padding};
        }
    }
    return std::nullopt;
}

bool areSideBySide(const Component& left, const Component& right) {
    constexpr double furthest = 32;
    const double gap = right.frame.minX() - left.frame.maxX();
    const double shared = std::min(left.frame.maxY(), right.frame.maxY()) -
                          std::max(left.frame.minY(), right.frame.minY());
    return gap >= -1 && gap <= furthest &&
           2 * shared >= std::min(left.frame.height, right.frame.height);
}

/// Controls of one kind whose sizes differ a little from their neighbours' on the left.
void addUnequalNeighbours(std::vector<Finding>& findings, std::span<const Component> components) {
    std::map<std::string, std::vector<const Component*>> byRole;
    for (const Component& component : components) {
        if (component.bucket == Bucket::control || component.bucket == Bucket::input) {
            byRole[component.role].push_back(&component);
        }
    }
    for (auto& [role, alike] : byRole) {
        std::ranges::stable_sort(alike, {}, [](const Component* one) { return one->frame.x; });
        for (std::size_t place = 1; place < alike.size(); ++place) {
            const Component& right = *alike[place];
            const Component* nearest = nullptr;
            for (std::size_t before = 0; before < place; ++before) {
                const Component& left = *alike[before];
                if (areSideBySide(left, right) &&
                    (nearest == nullptr || left.frame.maxX() >= nearest->frame.maxX())) {
                    nearest = &left;
                }
            }
            const auto difference = nearest ? slightDifference(right, *nearest) : std::nullopt;
            if (difference) {
                Finding finding = warningAbout(right, difference->kind);
                finding.estimated = difference->kind == "radius";
                finding.value = difference->kind + " " + difference->value;
                finding.wanted = "the same as " + nearest->header;
                findings.push_back(std::move(finding));
            }
        }
    }
}

void addGapsOffGrid(std::vector<Finding>& findings, std::span<const Component> components,
                    double grid) {
    for (const Component& component : components) {
        const auto& spacing = component.measures.spacing;
        if (!spacing || component.bucket != Bucket::collection) {
            continue;
        }
        const double nearest = std::round(spacing->gap / grid) * grid;
        if (std::abs(spacing->gap - nearest) == 1) {
            Finding finding = warningAbout(component, "gap");
            finding.value = "gap " + wholeNumber(spacing->gap) + "px";
            finding.wanted = wholeNumber(nearest) + "px";
            findings.push_back(std::move(finding));
        }
    }
}

template<typename Values>
void addTooMany(std::vector<Finding>& findings, const WindowAudit& audit, const Values& values,
                std::size_t most, const std::string& what) {
    if (values.size() <= most) {
        return;
    }
    std::ostringstream listed;
    for (const auto& value : values) {
        listed << (listed.tellp() > 0 ? ", " : "") << value;
    }
    Finding finding;
    finding.rule = Rule::consistency;
    finding.severity = Severity::warning;
    finding.role = "Window";
    finding.title = audit.title;
    finding.header = audit.title.empty() ? finding.role : finding.role + " · " + finding.title;
    finding.path = finding.header;
    finding.box = audit.window;
    finding.kind = what;
    finding.value = std::to_string(values.size()) + " " + what + " (" + listed.str() + ")";
    finding.wanted = "at most " + std::to_string(most);
    findings.push_back(std::move(finding));
}

} // namespace

std::vector<Finding> consistencyFindings(const WindowAudit& audit, const Thresholds& thresholds) {
    std::vector<Finding> findings;
    addNearColors(findings, audit, thresholds);
    addUnequalNeighbours(findings, audit.components);
    addGapsOffGrid(findings, audit.components, thresholds.grid);
    std::set<double> sizes;
    std::set<std::string> families;
    std::set<int> radii;
    for (const Component& component : audit.components) {
        if (component.showsText && component.typeface) {
            sizes.insert(component.typeface->size);
            families.insert(component.typeface->family);
        }
        if (component.measures.surface.radius) {
            radii.insert(*component.measures.surface.radius);
        }
    }
    addTooMany(findings, audit, sizes, thresholds.fontSizes, "font sizes");
    addTooMany(findings, audit, families, thresholds.families, "font families");
    addTooMany(findings, audit, radii, thresholds.radii, "corner radii");
    return findings;
}

} // namespace lumetry
