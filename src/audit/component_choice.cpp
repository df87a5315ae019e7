#include "audit/component_choice.h"

#include "audit/visibility.h"
#include "probe/ax_access.h"

#include <algorithm>
#include <utility>

namespace lumetry {
namespace {

/// Of what holds others, parts can be measured; of everything else neither the size nor the colours
/// are right unless it is to be seen as a whole.
bool holdsOthers(Bucket bucket) {
    return bucket == Bucket::collection || bucket == Bucket::container || bucket == Bucket::generic;
}

/// Things for screen readers alone are kept as small as that.
bool isSpeck(const Rect& frame) {
    constexpr double largest = 2;
    return frame.width <= largest || frame.height <= largest;
}

bool isMeasurable(const ElementNode& node) {
    return node.presence == Presence::whole ||
           (!isGone(node.presence) && holdsOthers(bucketFor(node.role)));
}

void count(LeftOut& leftOut, Presence presence) {
    switch (presence) {
    case Presence::whole:
        return;
    case Presence::hidden:
        ++leftOut.hidden;
        return;
    case Presence::clipped:
    case Presence::partlyClipped:
        ++leftOut.clipped;
        return;
    case Presence::covered:
    case Presence::partlyCovered:
        ++leftOut.covered;
        return;
    case Presence::offScreen:
    case Presence::partlyOffScreen:
        ++leftOut.offScreen;
        return;
    }
}

} // namespace

ComponentChooser::ComponentChooser(const ElementTree& tree, bool pageOnly)
    : tree_(tree), wanted_(tree.nodes().size(), !pageOnly), folded_(tree.nodes().size(), false) {
    if (pageOnly) {
        selectPage();
    }
    fold();
}

void ComponentChooser::selectPage() {
    const auto& nodes = tree_.nodes();
    for (std::size_t place = 0; place < nodes.size(); ++place) {
        const auto& parent = nodes[place].parent;
        wanted_[place] = nodes[place].role == "AXWebArea" || (parent && wanted_[*parent]);
    }
}

/// A text in a text, such as that of a link, and a field in a field, such as that of a combo box,
/// are one component each: the outer one, but for texts that have several in them.
void ComponentChooser::fold() {
    const auto& nodes = tree_.nodes();
    for (std::size_t place = 0; place < nodes.size(); ++place) {
        const ElementNode& node = nodes[place];
        const Bucket own = bucketFor(node.role);
        const Bucket outer = node.parent ? bucketFor(nodes[*node.parent].role) : Bucket::generic;
        if (isGone(node.presence) || own != outer) {
            continue;
        }
        if (own == Bucket::input) {
            folded_[place] = true;
        } else if (own == Bucket::text) {
            const auto texts =
                std::ranges::count_if(nodes[*node.parent].children, [&](std::size_t child) {
                    return !isGone(nodes[child].presence) &&
                           bucketFor(nodes[child].role) == Bucket::text;
                });
            folded_[texts == 1 ? place : *node.parent] = true;
        }
    }
}

std::vector<ComponentChoice> ComponentChooser::choose(WindowAudit& audit, std::size_t limit) {
    for (const std::size_t place : tree_.frontToBack()) {
        const ElementNode& node = tree_.nodes()[place];
        if (!wanted_[place]) {
            continue;
        }
        if (!isMeasurable(node)) {
            count(audit.leftOut, node.presence);
            continue;
        }
        const Bucket bucket = bucketFor(node.role);
        if (!node.frame) {
            continue;
        }
        if (!holdsOthers(bucket) && isSpeck(*node.frame)) {
            ++audit.leftOut.hidden;
            continue;
        }
        ++audit.elements;
        if (!folded_[place]) {
            take(place, resolveComponent(node.element), audit, limit);
        } else if (bucket == Bucket::text && node.parent && !folded_[*node.parent]) {
            take(place, {tree_.nodes()[*node.parent].element, Bucket::text, node.element}, audit,
                 limit);
        }
    }
    return std::move(chosen_);
}

/// A component may be described by itself, by an icon in it or by a text in it: the text says the
/// most.
void ComponentChooser::take(std::size_t place, const ResolvedComponent& resolved,
                            WindowAudit& audit, std::size_t limit) {
    const std::size_t component = tree_.find(resolved.component).value_or(place);
    const ElementNode& node = tree_.nodes()[component];
    const ElementNode& source = tree_.nodes()[place];
    const bool isText = bucketFor(source.role) == Bucket::text;
    if (const auto known = byNode_.find(component); known != byNode_.end()) {
        ComponentChoice& choice = chosen_[known->second];
        const bool knowsText =
            bucketFor(axString(choice.resolved.textSource, "AXRole").value_or("")) == Bucket::text;
        if (isText && !(knowsText && choice.resolved.textSource != choice.resolved.component)) {
            choice.resolved = resolved;
            choice.textFrame = source.frame.value_or(choice.frame);
        }
        return;
    }
    if (!node.frame || !wanted_[component] || !isMeasurable(node)) {
        return;
    }
    if (chosen_.size() >= limit) {
        ++audit.leftOut.beyondLimit;
        return;
    }
    byNode_.emplace(component, chosen_.size());
    chosen_.push_back({resolved, component, *node.frame,
                       isText ? source.frame.value_or(*node.frame) : *node.frame});
}

} // namespace lumetry
