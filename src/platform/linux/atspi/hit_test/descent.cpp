#include "platform/linux/atspi/hit_test/descent.h"

#include "platform/linux/atspi/hit_test/child_at_point.h"

#include <array>
#include <initializer_list>
#include <set>
#include <utility>

namespace lumetry::atspi {
namespace {

/// Far deeper than any interface; a tree that is deeper answers in circles.
constexpr int deepestLevel = 100;
constexpr int mostAncestors = 16;

/// The nearest ancestor inside the window that is seen at the point; absent where none is.
std::optional<ObjectReference> ancestorAtPoint(PointQueries& queries, ObjectReference object,
                                               const ObjectReference& topLevel) {
    for (int level = 0; level < mostAncestors; ++level) {
        auto parent = queries.get<Question::parent>(object);
        if (!parent || *parent == topLevel) {
            break;
        }
        queries.ask(std::array{Query{*parent, Question::extents}, Query{*parent, Question::states},
                               Query{*parent, Question::parent}});
        if (queries.isAtPoint(*parent) && queries.isShowing(*parent)) {
            return parent;
        }
        object = std::move(*parent);
    }
    return std::nullopt;
}

bool isSilent(PointQueries& queries, const Query& query) {
    return queries.outcome(query) == Outcome::silent;
}

/// What is read of every element, and thus asked along on the way down.
constexpr std::initializer_list<Question> alwaysRead = {Question::role, Question::interfaces};

/// Asks together what leads on from an object and what is read of it, unless it was on the last way
/// and what matters there has been asked.
/// @param onward what leads on
void askOnTheWay(PointQueries& queries, const Query& onward) {
    const ObjectReference& object = onward.object;
    if (!queries.isKnown(onward)) {
        queries.ask(std::array{onward, Query{object, Question::extents},
                               Query{object, Question::states}, Query{object, Question::role},
                               Query{object, Question::interfaces}});
    }
}

/// Most toolkits answer with a child, which has to be asked in turn.
Descent descendByAsking(PointQueries& queries, const TopLevel& topLevel,
                        std::optional<ObjectReference> next) {
    std::set<ObjectReference> visited{topLevel.object};
    ObjectReference current = topLevel.object;
    for (int level = 0; next && level < deepestLevel && visited.insert(*next).second; ++level) {
        askOnTheWay(queries, queries.childAtPointQuery(*next));
        if (isSilent(queries, queries.childAtPointQuery(*next))) {
            return {Outcome::silent, std::nullopt};
        }
        if (!queries.isAtPoint(*next) || !queries.isShowing(*next)) {
            // Some answer with a descendant further down.
            if (auto ancestor = ancestorAtPoint(queries, *next, topLevel.object)) {
                current = std::move(*ancestor);
            }
            break;
        }
        current = std::move(*next);
        next = queries.childAtPoint(current);
    }
    return {Outcome::answered, std::move(current)};
}

/// GTK answers with children that are shown and, but for the last, at the point: asking nothing
/// else on the way down halves what it has to do.
Descent descendThroughGtk(PointQueries& queries, Popovers& popovers, const TopLevel& topLevel,
                          std::optional<ObjectReference> next) {
    if (next) {
        next = popovers.covering(topLevel.object, *next, queries.at(), queries.deadline());
    }
    std::set<ObjectReference> visited{topLevel.object};
    ObjectReference current = topLevel.object;
    for (int level = 0; next && level < deepestLevel && visited.insert(*next).second; ++level) {
        if (isSilent(queries, queries.childAtPointQuery(*next))) {
            return {Outcome::silent, std::nullopt};
        }
        current = std::move(*next);
        next = queries.childAtPoint(current);
    }
    if (!queries.isKnown({current, Question::role})) {
        // A new one is going to be read: what nearly every element shows comes along.
        queries.ask(std::array{Query{current, Question::extents}, Query{current, Question::role},
                               Query{current, Question::interfaces}, Query{current, Question::name},
                               Query{current, Question::children}});
    }
    queries.use(current, {Question::extents, Question::role, Question::interfaces});
    if (!queries.isAtPoint(current)) {
        current =
            ancestorAtPoint(queries, std::move(current), topLevel.object).value_or(topLevel.object);
    }
    return {Outcome::answered, std::move(current)};
}

/// Some answer with the innermost object at once: Chromium from its last hit test while that still
/// covers the point, GTK 4 without those that take no pointer. Where it is a container, whatever is
/// in it has to be looked at here.
Descent descendByLooking(PointQueries& queries, const TopLevel& topLevel,
                         std::optional<ObjectReference> next) {
    if (!next) {
        return {Outcome::answered, topLevel.object};
    }
    ObjectReference current = std::move(*next);
    for (int level = 0; level < deepestLevel; ++level) {
        askOnTheWay(queries, {current, Question::children});
        if (isSilent(queries, {current, Question::children})) {
            return {Outcome::silent, std::nullopt};
        }
        // GTK 4 says where the inside of a widget is, which is smaller than the widget.
        if (level == 0 && topLevel.toolkit == Toolkit::chromium &&
            !(queries.isAtPoint(current) && queries.isShowing(current))) {
            current = ancestorAtPoint(queries, std::move(current), topLevel.object)
                          .value_or(topLevel.object);
            break;
        }
        auto child = childAtPoint(queries, current);
        if (!child) {
            break;
        }
        current = std::move(*child);
    }
    return {Outcome::answered, std::move(current)};
}

Descent descendInto(PointQueries& queries, Popovers& popovers, const TopLevel& topLevel,
                    std::optional<ObjectReference> child) {
    switch (topLevel.toolkit) {
    case Toolkit::chromium:
        return descendByLooking(queries, topLevel, std::move(child));
    case Toolkit::gtk4:
        // Version 4.8 knows nothing at any point.
        return descendByLooking(queries, topLevel, child ? std::move(child) : topLevel.object);
    case Toolkit::java:
        // Its root panes answer with themselves.
        return descendByLooking(queries, topLevel, topLevel.object);
    case Toolkit::gtk:
    case Toolkit::libreOffice:
        return descendThroughGtk(queries, popovers, topLevel, std::move(child));
    case Toolkit::gecko:
    case Toolkit::qt:
    case Toolkit::other:
        break;
    }
    return descendByAsking(queries, topLevel, std::move(child));
}

} // namespace

Descent descend(PointQueries& queries, Popovers& popovers, const TopLevel& topLevel) {
    const Outcome outcome = queries.outcome(queries.childAtPointQuery(topLevel.object));
    if (outcome != Outcome::answered) {
        return {outcome, std::nullopt};
    }
    Descent descent =
        descendInto(queries, popovers, topLevel, queries.childAtPoint(topLevel.object));
    if (descent.object) {
        queries.use(*descent.object, alwaysRead);
    }
    return descent;
}

} // namespace lumetry::atspi
