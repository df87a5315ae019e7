#include "audit/element_tree.h"

#include "base/text.h"
#include "platform/accessibility.h"
#include "platform/ax_value.h"
#include "probe/ax_access.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace lumetry {
namespace {

/// How many elements are asked together: few enough to be answered within the messaging time-out.
constexpr std::size_t batchSize = 64;

/// Whether nothing is to be seen of an element's contents outside of its frame.
bool clipsContents(std::string_view role) {
    constexpr std::array<std::string_view, 8> roles = {
        "AXScrollArea", "AXWebArea", "AXList", "AXOutline",
        "AXTable",      "AXGrid",    "AXMenu", "AXTextArea",
    };
    return std::ranges::find(roles, role) != roles.end();
}

bool isTrue(const AXUIElement& element, std::string_view attribute) {
    const auto value = element.copyAttributeValue(attribute);
    return value && value->as<bool>().value_or(false);
}

} // namespace

TreeReading ElementTree::read(const AXUIElement& root, std::size_t most, const Progress& progress) {
    nodes_.clear();
    places_.clear();
    cutOff_ = busy_ = false;
    nodes_.push_back({root, {}, {}, {}, {}, {}, visibility_.window(), Presence::whole});
    places_.emplace(root, 0);
    const std::size_t unanswered = platform_.accessibility.unanswered();
    for (std::size_t begin = 0;
         begin < nodes_.size() && platform_.accessibility.unanswered() == unanswered;) {
        const std::size_t end = std::min(nodes_.size(), begin + batchSize);
        readBatch(begin, end);
        for (std::size_t place = begin; place < end; ++place) {
            addChildren(place, most);
        }
        begin = end;
        if (progress) {
            progress(begin);
        }
    }
    return cutOff_ ? TreeReading::cutOff : TreeReading::complete;
}

void ElementTree::readBatch(std::size_t begin, std::size_t end) {
    constexpr std::array<std::string_view, 4> asked = {"AXRole", "AXPosition", "AXTitle",
                                                       "AXHidden"};
    std::vector<AXUIElement> elements;
    elements.reserve(end - begin);
    for (std::size_t place = begin; place < end; ++place) {
        elements.push_back(nodes_[place].element);
    }
    platform_.accessibility.prefetch(elements, asked);
    for (std::size_t place = begin; place < end; ++place) {
        describe(nodes_[place]);
    }
    askForRelatives(begin, end);
}

/// Of what is to be seen: the children, and of what may be a part of a component what it is in.
void ElementTree::askForRelatives(std::size_t begin, std::size_t end) {
    constexpr std::array<std::string_view, 1> parent = {"AXParent"};
    std::vector<AXUIElement> parents;
    std::vector<AXUIElement> parts;
    for (std::size_t place = begin; place < end; ++place) {
        const ElementNode& node = nodes_[place];
        if (isGone(node.presence)) {
            continue;
        }
        parents.push_back(node.element);
        const Bucket bucket = bucketFor(node.role);
        if (bucket == Bucket::text || bucket == Bucket::graphic) {
            parts.push_back(node.element);
        }
    }
    platform_.accessibility.prefetch(parts, parent);
    platform_.accessibility.prefetchChildren(parents);
}

void ElementTree::describe(ElementNode& node) {
    node.role = axString(node.element, "AXRole").value_or("");
    node.title = trimmed(axString(node.element, "AXTitle").value_or(""));
    node.frame = axFrame(node.element);
    if (node.parent) {
        node.presence = isTrue(node.element, "AXHidden") ? Presence::hidden
                        : node.frame ? visibility_.presenceOf(*node.frame, node.clip)
                                     : Presence::whole;
    }
    busy_ = busy_ || (!isGone(node.presence) && isTrue(node.element, "AXElementBusy"));
}

void ElementTree::addChildren(std::size_t parent, std::size_t most) {
    if (isGone(nodes_[parent].presence)) {
        return;
    }
    const auto children = axChildren(nodes_[parent].element);
    if (!children) {
        return;
    }
    const Rect clip = nodes_[parent].frame && clipsContents(nodes_[parent].role)
                          ? intersect(nodes_[parent].clip, *nodes_[parent].frame)
                          : nodes_[parent].clip;
    for (const AXUIElement& child : *children) {
        if (nodes_.size() >= most) {
            cutOff_ = true;
            return;
        }
        // An application may list an element twice, or one of its own parents.
        if (places_.emplace(child, nodes_.size()).second) {
            nodes_[parent].children.push_back(nodes_.size());
            nodes_.push_back({child, parent, {}, {}, {}, {}, clip, Presence::whole});
        }
    }
}

std::size_t ElementTree::fingerprint() const {
    constexpr std::size_t prime = 1099511628211U; // of the FNV hash
    std::size_t sum = 14695981039346656037U;
    const auto add = [&sum](std::size_t value) { sum = (sum ^ value) * prime; };
    const auto addNumber = [&add](double value) { add(std::hash<double>()(value)); };
    for (const ElementNode& node : nodes_) {
        const Rect frame = node.frame.value_or(Rect());
        add(std::hash<std::string>()(node.role));
        add(static_cast<std::size_t>(node.presence));
        addNumber(frame.x);
        addNumber(frame.y);
        addNumber(frame.width);
        addNumber(frame.height);
    }
    return sum;
}

std::optional<std::size_t> ElementTree::find(const AXUIElement& element) const {
    const auto place = places_.find(element);
    return place != places_.end() ? std::optional(place->second) : std::nullopt;
}

std::vector<std::size_t> ElementTree::frontToBack() const {
    std::vector<std::size_t> order;
    order.reserve(nodes_.size());
    // Backwards: parents before their children, earlier children before later ones.
    std::vector<std::size_t> waiting;
    if (!nodes_.empty()) {
        waiting.push_back(0);
    }
    while (!waiting.empty()) {
        const std::size_t place = waiting.back();
        waiting.pop_back();
        order.push_back(place);
        std::vector<std::size_t> children = nodes_[place].children;
        std::ranges::reverse(children);
        waiting.insert(waiting.end(), children.begin(), children.end());
    }
    std::ranges::reverse(order);
    return order;
}

} // namespace lumetry
