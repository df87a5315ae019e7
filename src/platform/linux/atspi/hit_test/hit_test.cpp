#include "platform/linux/atspi/hit_test/hit_test.h"

#include "platform/linux/atspi/hit_test/descent.h"
#include "platform/linux/atspi/tree/popups.h"
#include "platform/linux/atspi/tree/roles.h"

#include <atspi/atspi-constants.h>

#include <cstddef>
#include <span>
#include <utility>

namespace lumetry::atspi {
namespace {

/// The way through a tree that is deep but narrow. A longer one went past many children, which is
/// worth asking about in advance only if it is likely to be gone again.
constexpr std::size_t shortWay = 12;

double areaOf(const IntRect& place) {
    return static_cast<double>(place.width) * place.height;
}

} // namespace

std::optional<HitTest::Hit> HitTest::objectAt(Point point, std::optional<pid_t> pid,
                                              Deadline deadline) {
    const auto window = windows_.windowAt(point, pid);
    const auto owner = window && window->pid ? window->pid : pid;
    if (!window || !owner || !bus_.connect()) {
        return std::nullopt;
    }
    const Token kept = cache_.keep();
    const Point at = windows_.rootSpace().toRoot(point);
    lastClient_ = window->client;
    auto object = objectIn(*window, *owner, at, deadline);
    if (!object) {
        return std::nullopt;
    }
    if (!window->popup) {
        topLevels_.noteHit(*owner, *object);
    }
    if (toolkits_.of(*object) == Toolkit::qt) {
        object = textBehind(std::move(*object), deadline);
    }
    const IntPoint unit = unitAt(at, placementOf(*object));
    std::optional<TextLeaf> hit;
    for (const TextLeaf& text : textLeavesIn(*object, deadline)) {
        // Around a text of several lines is also what begins behind its end.
        if (text.place.contains(unit) && (!hit || areaOf(text.place) < areaOf(hit->place))) {
            hit = text;
        }
    }
    return Hit{std::move(*object), *owner, hit};
}

std::optional<ObjectReference> HitTest::objectIn(const DesktopWindow& window, pid_t pid,
                                                 Point point, Deadline deadline) {
    for (const bool again : {false, true}) {
        const auto topLevel = topLevels_.at(point, window, pid, deadline);
        if (!topLevel) {
            return std::nullopt;
        }
        const bool countsFromScreen = topLevel->toolkit == Toolkit::chromium && !window.surface;
        const Placement placement = countsFromScreen ? Placement() : placementOf(topLevel->object);
        const IntPoint at = unitAt(point, placement);
        const Habits& habits = toolkits_.habits(topLevel->toolkit);
        HitPoint hit = {habits.hitsInPixels ? unitAt(point, Placement()) : at, at};
        if (window.popup && window.surface && topLevel->toolkit == Toolkit::qt) {
            // Places are told from the window below, but points taken from the popup itself.
            hit.asked = unitAt(point, {1, window.surface->origin()});
        }
        PointQueries queries(cache_, hit, habits, deadline);
        if (lastTopLevel_ == topLevel->object) {
            askAboutLastWay(queries);
        }
        Descent descent = descend(queries, popovers_, *topLevel);
        if (descent.object && *descent.object != topLevel->object) {
            askWhatTellsRole(queries, *descent.object, habits);
        }
        // Of one that was too slow, too: the next hit test begins where this one ended.
        if (descent.object || descent.outcome == Outcome::silent) {
            keepWhatHelps(queries, *topLevel, descent.object);
        }
        if (descent.object) {
            if (window.popup && *descent.object == topLevel->object) {
                auto content = contentOfHollowPopup(pid, at, deadline);
                return content ? content : descent.object;
            }
            return descent.object;
        }
        if (descent.outcome == Outcome::silent) {
            return std::nullopt;
        }
        // What was remembered of the window is gone; a popup comes back as another object.
        topLevels_.forget(window.id);
        cache_.forget(topLevel->object.name);
        if (again && descent.outcome == Outcome::refused) {
            return topLevel->object;
        }
    }
    return std::nullopt;
}

/// Asks what tells what that object is, unless it was asked along on the last way; together with
/// what is shown of nearly every element, so that nothing waits longer for it.
void HitTest::askWhatTellsRole(PointQueries& queries, const ObjectReference& object,
                               const Habits& habits) {
    const auto role = queries.get<Question::role>(object).value_or(-1);
    std::vector<Question> questions = questionsForRole(role, habits);
    // A text is measured as a part of what it labels.
    const bool isText = axRole(role) == "AXStaticText";
    if (isText) {
        questions.push_back(Question::parent);
    }
    bool known = true;
    for (const Question question : questions) {
        known = known && queries.isKnown({object, question});
        queries.note({object, question});
    }
    if (!known) {
        questions.insert(questions.end(), {Question::name, Question::text, Question::characterCount,
                                           Question::value, Question::children});
        cache_.ask(object, questions, queries.deadline());
    }
    const auto parent = isText || dependsOnParentsRole(role, habits)
                            ? queries.get<Question::parent>(object)
                            : std::nullopt;
    if (parent) {
        queries.use(*parent, {Question::role, Question::interfaces});
    }
}

/// Qt shows a text that may be longer than its place through a widget in front of it: the text
/// behind such a widget; any other object itself.
ObjectReference HitTest::textBehind(ObjectReference object, Deadline deadline) {
    if (cache_.ask<Question::role>(object, deadline) != ATSPI_ROLE_FILLER) {
        return object;
    }
    auto parent = cache_.ask<Question::parent>(object, deadline);
    const bool hasText = parent && cache_.ask<Question::characterCount>(*parent, deadline);
    return hasText ? std::move(*parent) : std::move(object);
}

/// Chromium keeps the entries of a drop-down in the page, below the element that it drops from.
std::optional<ObjectReference> HitTest::contentOfHollowPopup(pid_t pid, IntPoint at,
                                                             Deadline deadline) {
    auto opener = topLevels_.lastHit(pid);
    if (!opener) {
        return std::nullopt;
    }
    const auto isAtPoint = [at](const IntRect& extents) { return extents.contains(at); };
    return firstShowingBelow(bus_, toolkits_, {std::move(*opener)}, isAtPoint, deadline);
}

void HitTest::askAboutLastWay(PointQueries& queries) {
    if (lastWay_.size() > shortWay) {
        const Query child = queries.childAtPointQuery(lastTopLevel_);
        queries.ask(std::span(&child, 1));
        if (cache_.get<Question::objectAtPoint>(child.object, child.first, child.second) !=
            lastChild_) {
            return;
        }
    }
    std::vector<Query> way = lastWay_;
    // Where the pointer has left the element, what it says is of no use.
    if (lastPlace_ && !lastPlace_->contains(queries.at())) {
        std::erase_if(way, [this](const Query& query) { return query.object == lastTarget_; });
    }
    queries.askAgain(std::move(way));
}

void HitTest::keepWhatHelps(const PointQueries& queries, const TopLevel& topLevel,
                            const std::optional<ObjectReference>& target) {
    lastTopLevel_ = topLevel.object;
    lastTarget_ = target.value_or(ObjectReference());
    lastPlace_ = cache_.get<Question::extents>(lastTarget_);
    lastWay_ = queries.way();
    const Query child = queries.childAtPointQuery(topLevel.object);
    lastChild_ = cache_.get<Question::objectAtPoint>(child.object, child.first, child.second);
}

} // namespace lumetry::atspi
