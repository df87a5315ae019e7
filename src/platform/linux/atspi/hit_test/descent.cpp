#include "platform/linux/atspi/hit_test/descent.h"

#include "platform/linux/atspi/hit_test/child_at_point.h"

#include <array>
#include <initializer_list>
#include <set>
#include <utility>
#include <vector>

namespace lumetry::atspi {
namespace {

using About = Inquiry::About;

/// Far deeper than any interface; a tree that is deeper answers in circles.
constexpr int deepestLevel = 100;
constexpr int mostAncestors = 16;

/// The nearest ancestor inside the window that is seen at the point; absent where none is.
std::optional<ObjectReference> ancestorAtPoint(Inquiry& inquiry, ObjectReference object,
                                               const ObjectReference& topLevel) {
    for (int level = 0; level < mostAncestors; ++level) {
        auto parent = referenceOf(inquiry.reply({object, About::parent}));
        if (!parent || *parent == topLevel) {
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

/// What is read of every element, and thus asked along on the way down.
constexpr std::initializer_list<About> alwaysRead = {About::role, About::interfaces};

/// Asks together what leads on from an object and what is read of it, unless it was on the last way
/// and what matters there has been asked.
/// @param onward what leads on
void askOnTheWay(Inquiry& inquiry, const ObjectReference& object, About onward) {
    if (inquiry.known({object, onward}) == nullptr) {
        inquiry.ask(
            std::array{Inquiry::Query{object, onward}, Inquiry::Query{object, About::extents},
                       Inquiry::Query{object, About::states}, Inquiry::Query{object, About::role},
                       Inquiry::Query{object, About::interfaces}});
    }
}

/// Most toolkits answer with a child, which has to be asked in turn.
Descent descendByAsking(Inquiry& inquiry, const TopLevel& topLevel,
                        std::optional<ObjectReference> next) {
    std::set<ObjectReference> visited{topLevel.object};
    ObjectReference current = topLevel.object;
    for (int level = 0; next && level < deepestLevel && visited.insert(*next).second; ++level) {
        askOnTheWay(inquiry, *next, About::childAtPoint);
        if (isSilent(inquiry, *next, About::childAtPoint)) {
            return {Outcome::silent, std::nullopt};
        }
        if (!inquiry.isAtPoint(*next) || !inquiry.isShowing(*next)) {
            // Some answer with a descendant further down.
            if (auto ancestor = ancestorAtPoint(inquiry, *next, topLevel.object)) {
                current = std::move(*ancestor);
            }
            break;
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
    inquiry.use(current, {About::extents, About::role, About::interfaces});
    if (!inquiry.isAtPoint(current)) {
        current =
            ancestorAtPoint(inquiry, std::move(current), topLevel.object).value_or(topLevel.object);
    }
    return {Outcome::answered, std::move(current)};
}

/// Some answer with the innermost object at once: Chromium from its last hit test while that still
/// covers the point, GTK 4 without those that take no pointer. Where it is a container, whatever is
/// in it has to be looked at here.
Descent descendByLooking(Inquiry& inquiry, const TopLevel& topLevel,
                         std::optional<ObjectReference> next) {
    if (!next) {
        return {Outcome::answered, topLevel.object};
    }
    ObjectReference current = std::move(*next);
    for (int level = 0; level < deepestLevel; ++level) {
        askOnTheWay(inquiry, current, About::children);
        if (isSilent(inquiry, current, About::children)) {
            return {Outcome::silent, std::nullopt};
        }
        // GTK 4 says where the inside of a widget is, which is smaller than the widget.
        if (level == 0 && topLevel.toolkit == Toolkit::chromium &&
            !(inquiry.isAtPoint(current) && inquiry.isShowing(current))) {
            current = ancestorAtPoint(inquiry, std::move(current), topLevel.object)
                          .value_or(topLevel.object);
            break;
        }
        auto child = childAtPoint(inquiry, current);
        if (!child) {
            break;
        }
        current = std::move(*child);
    }
    return {Outcome::answered, std::move(current)};
}

Descent descendInto(Inquiry& inquiry, Popovers& popovers, const TopLevel& topLevel,
                    std::optional<ObjectReference> child) {
    switch (topLevel.toolkit) {
    case Toolkit::chromium:
        return descendByLooking(inquiry, topLevel, std::move(child));
    case Toolkit::gtk4:
        // Version 4.8 knows nothing at any point.
        return descendByLooking(inquiry, topLevel, child ? std::move(child) : topLevel.object);
    case Toolkit::java:
        // Its root panes answer with themselves.
        return descendByLooking(inquiry, topLevel, topLevel.object);
    case Toolkit::gtk:
    case Toolkit::libreOffice:
        return descendThroughGtk(inquiry, popovers, topLevel, std::move(child));
    case Toolkit::gecko:
    case Toolkit::qt:
    case Toolkit::other:
        break;
    }
    return descendByAsking(inquiry, topLevel, std::move(child));
}

} // namespace

Descent descend(Inquiry& inquiry, Popovers& popovers, const TopLevel& topLevel) {
    const Reply& reply = inquiry.reply({topLevel.object, About::childAtPoint});
    if (reply.outcome != Outcome::answered) {
        return {reply.outcome, std::nullopt};
    }
    Descent descent = descendInto(inquiry, popovers, topLevel, referenceOf(reply));
    if (descent.object) {
        inquiry.use(*descent.object, alwaysRead);
    }
    return descent;
}

} // namespace lumetry::atspi
