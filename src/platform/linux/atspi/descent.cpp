#include "platform/linux/atspi/descent.h"

#include "platform/linux/atspi/child_at_point.h"

#include <set>
#include <utility>
#include <vector>

namespace lumetry::atspi {
namespace {

using About = Inquiry::About;

/// Far deeper than any interface; a tree that is deeper answers in circles.
constexpr int deepestLevel = 100;
constexpr int mostAncestors = 16;

/// The nearest ancestor that is seen at the point; absent where there is none above.
std::optional<ObjectReference> ancestorAtPoint(Inquiry& inquiry, ObjectReference object) {
    for (int level = 0; level < mostAncestors; ++level) {
        auto parent = referenceOf(inquiry.reply({object, About::parent}));
        if (!parent) {
            break;
        }
        const std::vector<Inquiry::Query> queries = {
            {*parent, About::extents}, {*parent, About::states}, {*parent, About::parent}};
        inquiry.ask(queries);
        if (inquiry.isAtPoint(*parent) && inquiry.isShowing(*parent)) {
            return parent;
        }
        object = std::move(*parent);
    }
    return std::nullopt;
}

bool isSilent(Inquiry& inquiry, const ObjectReference& object, About about) {
    return inquiry.reply({object, about}).outcome == Outcome::silent;
}

/// Most toolkits answer with a child, which has to be asked in turn.
Descent descendByAsking(Inquiry& inquiry, const TopLevel& topLevel,
                        std::optional<ObjectReference> next) {
    std::set<ObjectReference> visited{topLevel.object};
    ObjectReference current = topLevel.object;
    for (int level = 0; next && level < deepestLevel && visited.insert(*next).second; ++level) {
        const std::vector<Inquiry::Query> queries = {
            {*next, About::childAtPoint}, {*next, About::extents}, {*next, About::states}};
        inquiry.ask(queries);
        if (isSilent(inquiry, *next, About::childAtPoint)) {
            return {Outcome::silent, std::nullopt};
        }
        if (!inquiry.isAtPoint(*next) || !inquiry.isShowing(*next)) {
            // Some answer with a descendant further down.
            auto ancestor = ancestorAtPoint(inquiry, *next);
            return {Outcome::answered, ancestor ? std::move(*ancestor) : std::move(current)};
        }
        current = std::move(*next);
        next = referenceOf(inquiry.reply({current, About::childAtPoint}));
    }
    return {Outcome::answered, std::move(current)};
}

/// GTK answers with children that are shown and, but for the last, at the point: asking nothing
/// else on the way down halves what it has to do.
Descent descendThroughGtk(Inquiry& inquiry, Popovers& popovers, const TopLevel& topLevel,
                          std::optional<ObjectReference> next) {
    if (next) {
        next = popovers.covering(topLevel.object, *next, inquiry.at(), inquiry.deadline());
    }
    std::set<ObjectReference> visited{topLevel.object};
    ObjectReference current = topLevel.object;
    for (int level = 0; next && level < deepestLevel && visited.insert(*next).second; ++level) {
        if (isSilent(inquiry, *next, About::childAtPoint)) {
            return {Outcome::silent, std::nullopt};
        }
        current = std::move(*next);
        next = referenceOf(inquiry.reply({current, About::childAtPoint}));
    }
    if (!inquiry.isAtPoint(current)) {
        const auto ancestor = ancestorAtPoint(inquiry, current);
        return {Outcome::answered, ancestor ? *ancestor : topLevel.object};
    }
    return {Outcome::answered, std::move(current)};
}

/// Chromium answers with the innermost object at once, but from its last hit test while that still
/// covers the point: where it is a container, whatever is in it has to be looked at here.
Descent descendByLooking(Inquiry& inquiry, const TopLevel& topLevel,
                         std::optional<ObjectReference> next) {
    if (!next) {
        return {Outcome::answered, topLevel.object};
    }
    ObjectReference current = std::move(*next);
    for (int level = 0; level < deepestLevel; ++level) {
        const std::vector<Inquiry::Query> queries = {
            {current, About::extents}, {current, About::states}, {current, About::children}};
        inquiry.ask(queries);
        if (isSilent(inquiry, current, About::children)) {
            return {Outcome::silent, std::nullopt};
        }
        if (level == 0 && !(inquiry.isAtPoint(current) && inquiry.isShowing(current))) {
            const auto ancestor = ancestorAtPoint(inquiry, current);
            return {Outcome::answered, ancestor ? *ancestor : topLevel.object};
        }
        auto child = childAtPoint(inquiry, current);
        if (!child) {
            break;
        }
        current = std::move(*child);
    }
    return {Outcome::answered, std::move(current)};
}

} // namespace

Descent descend(Inquiry& inquiry, Popovers& popovers, const TopLevel& topLevel) {
    const Reply& reply = inquiry.reply({topLevel.object, About::childAtPoint});
    if (reply.outcome != Outcome::answered) {
        return {reply.outcome, std::nullopt};
    }
    auto child = referenceOf(reply);
    switch (topLevel.toolkit) {
    case Toolkit::chromium:
        return descendByLooking(inquiry, topLevel, std::move(child));
    case Toolkit::gtk:
        return descendThroughGtk(inquiry, popovers, topLevel, std::move(child));
    case Toolkit::gecko:
    case Toolkit::qt:
    case Toolkit::other:
        break;
    }
    return descendByAsking(inquiry, topLevel, std::move(child));
}

} // namespace lumetry::atspi
