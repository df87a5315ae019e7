#pragma once

#include "audit/component.h"
#include "base/geometry.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace lumetry {

/// What is looked for in a window.
enum class Rule : std::uint8_t { contrast, targetSize, name, textSize, consistency };

/// What is said of a rule.
struct RuleDescription {
    Rule rule;
    std::string_view identifier;
    std::string_view criterion; ///< of WCAG 2.2; empty where the rule follows none
    std::string_view summary;   ///< one sentence
    std::string_view help;      ///< a page that explains the criterion; empty for none
};

/// @param enhanced for WCAG's level AAA
[[nodiscard]] const RuleDescription& describe(Rule rule, bool enhanced = false);

enum class Severity : std::uint8_t { error, warning };

/// One component, or the window, that a rule finds fault with.
struct Finding {
    Rule rule = Rule::contrast;
    Severity severity = Severity::error;
    std::string header; ///< of the component
    std::string role;   ///< as headers say it, such as "Button"
    std::string title;  ///< as a whole; empty for none
    std::string path;   ///< its place in the tree
    Rect box;           ///< accessibility space
    std::string kind;   ///< what is inconsistent, such as "height"; empty for the other rules
    std::string value;  ///< what was found
    std::string wanted;
    bool estimated = false; ///< the value was read from the pixels
    bool baseline = false;  ///< it was known before
};

/// One without value and wish.
[[nodiscard]] Finding findingAbout(const Component& component, Rule rule, Severity severity);

} // namespace lumetry
