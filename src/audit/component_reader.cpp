#include "audit/component_reader.h"

#include "audit/text_pixels.h"
#include "base/color_metrics.h"
#include "base/text.h"
#include "platform/accessibility.h"
#include "platform/ax_value.h"
#include "probe/ax_access.h"
#include "probe/hit_test.h"
#include "session/glance.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace lumetry {
namespace {

constexpr std::uint32_t noWindow = 0;
constexpr int pixelsOfFill = 4096;    ///< enough to see which colour prevails
constexpr int pixelsOfText = 200'000; ///< every one, but for whole pages

std::string textOf(const AXUIElement& element) {
    return trimmed(axString(element, "AXValue").value_or(""));
}

std::optional<AXUIElement> labelOf(const AXUIElement& element) {
    const auto label = element.copyAttributeValue("AXTitleUIElement");
    return label ? label->as<AXUIElement>() : std::nullopt;
}

/// Whether labels of others say what it is for.
bool isLabelled(Bucket bucket) {
    return bucket == Bucket::control || bucket == Bucket::input || bucket == Bucket::graphic;
}

bool isEnabled(const AXUIElement& element) {
    const auto enabled = element.copyAttributeValue("AXEnabled");
    return !enabled || enabled->as<bool>().value_or(true);
}

/// Whether there is room for the title beside anything else: an icon has a title, too, but does not
/// show it.
bool hasRoomFor(const std::string& title, const Rect& frame) {
    constexpr double narrowLetter = 5; // points
    constexpr double margins = 8;
    constexpr std::size_t mostLetters = 20; // what is longer may be cut off
    const auto letters = static_cast<double>(std::min(title.size(), mostLetters));
    return !title.empty() && frame.width >= letters * narrowLetter + margins;
}

/// The inside of a field or button, without its border.
Rect insideOf(const Rect& frame) {
    constexpr double border = 3;
    const Rect inside = inset(frame, border, border);
    return inside.isEmpty() ? frame : inside;
}

} // namespace

void ComponentReader::read(std::span<const ComponentChoice> choices, WindowAudit& audit) {
    prefetch(choices);
    for (const ComponentChoice& choice : choices) {
        Component component = componentOf(choice);
        if (!component.showsText || readColors(choice, component)) {
            const bool isUnknown = component.showsText && component.enabled &&
                                   (!component.textColor || !component.measures.surface.fill);
            audit.unknownTextColors += isUnknown ? 1 : 0;
            audit.components.push_back(std::move(component));
        } else {
            ++audit.leftOut.covered;
        }
    }
}

void ComponentReader::prefetch(std::span<const ComponentChoice> choices) {
    constexpr std::array<std::string_view, 6> shown = {
        "AXRole", "AXTitle", "AXValue", "AXChildren", "AXEnabled", "AXNumberOfCharacters"};
    constexpr std::array<std::string_view, 1> typography = {"AXAttributedStringForRange"};
    std::vector<AXUIElement> elements;
    std::vector<AXUIElement> texts;
    elements.reserve(2 * choices.size());
    for (const auto& [resolved, node, frame, textFrame] : choices) {
        elements.push_back(resolved.component);
        elements.push_back(resolved.textSource);
        if (resolved.bucket == Bucket::text || resolved.bucket == Bucket::control ||
            resolved.bucket == Bucket::input) {
            texts.push_back(resolved.textSource);
        }
    }
    platform_.accessibility.prefetch(elements, shown);
    platform_.accessibility.prefetch(texts, typography);
    prefetchLabels(choices);
}

/// Of those that have to have a title, and have none of their own.
void ComponentReader::prefetchLabels(std::span<const ComponentChoice> choices) {
    constexpr std::array<std::string_view, 1> label = {"AXTitleUIElement"};
    constexpr std::array<std::string_view, 2> titles = {"AXTitle", "AXValue"};
    std::vector<AXUIElement> untitled;
    for (const ComponentChoice& choice : choices) {
        if (isLabelled(choice.resolved.bucket) && ownTitleOf(choice).empty()) {
            untitled.push_back(tree_.nodes()[choice.node].element);
        }
    }
    platform_.accessibility.prefetch(untitled, label);
    std::vector<AXUIElement> labels;
    for (const AXUIElement& element : untitled) {
        if (auto found = labelOf(element)) {
            labels.push_back(std::move(*found));
        }
    }
    platform_.accessibility.prefetch(labels, titles);
}

Component ComponentReader::componentOf(const ComponentChoice& choice) {
    const ResolvedComponent& resolved = choice.resolved;
    Glance glance = deriveGlance(platform_, resolved, choice.frame, noWindow);
    Component component;
    component.role = tree_.nodes()[choice.node].role;
    component.bucket = resolved.bucket;
    component.header = std::move(glance.header);
    component.measures = std::move(glance.measures);
    component.frame = choice.frame;
    component.parent = tree_.nodes()[choice.node].parent;
    component.path = pathOf(choice.node, component.header);
    component.enabled = isEnabled(resolved.component);
    component.title = titleOf(choice);
    component.showsText = showsText(choice, component);
    if (component.measures.text.font) {
        component.typeface = typefaceOf(*component.measures.text.font);
    }
    if (auto& fill = component.measures.surface.fill) {
        const auto even = AreaColors(picture_, choice.frame, pixelsOfFill).evenFill(*fill);
        component.evenFill = even.has_value();
        fill = even ? even : fill;
    }
    return component;
}

/// What it is titled itself, or what is written in it; what is in a field is no title.
std::string ComponentReader::ownTitleOf(const ComponentChoice& choice) const {
    const ElementNode& node = tree_.nodes()[choice.node];
    const Bucket bucket = choice.resolved.bucket;
    if (!node.title.empty() || bucket == Bucket::graphic) {
        return node.title;
    }
    if (bucket == Bucket::input) {
        // Of a combo box, its field may have the title.
        for (const std::size_t child : node.children) {
            if (bucketFor(tree_.nodes()[child].role) == Bucket::input) {
                return tree_.nodes()[child].title;
            }
        }
        return {};
    }
    std::string text = textOf(choice.resolved.textSource);
    return text.empty() ? textOf(choice.resolved.component) : text;
}

std::string ComponentReader::titleOf(const ComponentChoice& choice) const {
    std::string own = ownTitleOf(choice);
    const auto label = own.empty() && isLabelled(choice.resolved.bucket)
                           ? labelOf(tree_.nodes()[choice.node].element)
                           : std::nullopt;
    if (!label) {
        return own;
    }
    std::string title = trimmed(axString(*label, "AXTitle").value_or(""));
    return title.empty() ? textOf(*label) : title;
}

/// Whether the ink of a component is that of a text: one that it has, or its title where nothing
/// else is in it. In a field that is empty there may be a hint.
bool ComponentReader::showsText(const ComponentChoice& choice, const Component& component) const {
    const ResolvedComponent& resolved = choice.resolved;
    const bool hasText = !textOf(resolved.textSource).empty();
    const bool hasLabel = hasText && !(resolved.component == resolved.textSource);
    const ElementNode& node = tree_.nodes()[choice.node];
    const bool showsTitle = node.children.empty() && hasRoomFor(node.title, node.frame.value());
    switch (component.bucket) {
    case Bucket::text:
        return hasText || (showsTitle && component.role == "AXStaticText");
    case Bucket::input:
        return true;
    case Bucket::control:
        return hasLabel || component.measures.text.font.has_value() || showsTitle;
    case Bucket::generic:
        return showsTitle && (component.role == "AXRow" || component.role == "AXCell");
    default:
        return false;
    }
}

/// The titled elements and the containers that the component lies in, and the component.
std::string ComponentReader::pathOf(std::size_t component, const std::string& header) const {
    constexpr std::size_t deepest = 64;
    std::vector<std::string> steps = {header};
    auto place = tree_.nodes()[component].parent;
    for (; place && steps.size() < deepest; place = tree_.nodes()[*place].parent) {
        const ElementNode& node = tree_.nodes()[*place];
        if (!node.title.empty() || bucketFor(node.role) != Bucket::generic) {
            steps.push_back(componentHeader(node.role, node.title));
        }
    }
    std::string path;
    for (std::size_t step = steps.size(); step-- > 0;) {
        path += onOneLine(steps[step]);
        path += step > 0 ? " / " : "";
    }
    return path;
}

/// The colour that the application tells is taken where the pixels bear it out: it says nothing of
/// transparency, nor of what lies over the text.
bool ComponentReader::readColors(const ComponentChoice& choice, Component& component) {
    constexpr double leastShare = 0.35; // of the contrast, as thin letters are blends all over
    constexpr double sameColor = 1.1;
    constexpr double contrastOfUsualText = 4.5;
    const auto& fill = component.measures.surface.fill;
    if (!fill) {
        return true;
    }
    const bool ownsText = component.bucket == Bucket::text ||
                          !(choice.resolved.component == choice.resolved.textSource);
    const AreaColors colors(picture_, ownsText ? choice.textFrame : insideOf(choice.textFrame),
                            pixelsOfText);
    const auto ink = colors.inkOn(*fill);
    const auto& told = component.measures.text.color;
    if (told && wcagContrast(*told, *fill) < sameColor) {
        return !ink || isInFront(choice); // what it is on is not known
    }
    const bool borneOut =
        told && (colors.contains(*told) ||
                 (ink && (lum(*ink) > lum(*fill)) == (lum(*told) > lum(*fill)) &&
                  wcagContrast(*ink, *fill) - 1 >= leastShare * (wcagContrast(*told, *fill) - 1)));
    component.textColor = borneOut ? told : ink;
    component.textColorIsEstimated = !borneOut;
    // What is hard to read, or set in another colour than it shows, may lie behind something.
    const bool isDoubtful = told && (!borneOut || wcagContrast(*told, *fill) < contrastOfUsualText);
    return !isDoubtful || isInFront(choice);
}

/// Whether the element in the middle of it is the component, lies in it or has it in it.
bool ComponentReader::isInFront(const ComponentChoice& choice) {
    const Point middle = {choice.textFrame.midX(), choice.textFrame.midY()};
    const auto hit = axElementAt(platform_, state_, middle, window_);
    const auto found = hit ? tree_.find(*hit) : std::nullopt;
    if (!found) {
        return true;
    }
    const auto contains = [this](std::size_t outer, std::size_t inner) {
        auto place = std::optional(inner);
        while (place && *place > outer) {
            place = tree_.nodes()[*place].parent;
        }
        return place == outer;
    };
    return contains(*found, choice.node) || contains(choice.node, *found);
}

} // namespace lumetry
