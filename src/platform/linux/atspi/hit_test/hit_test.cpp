#include "platform/linux/atspi/hit_test/hit_test.h"

#include "platform/linux/atspi/hit_test/descent.h"
#include "platform/linux/atspi/hit_test/text_behind.h"
#include "platform/linux/atspi/tree/popup_search.h"
#include "platform/linux/atspi/tree/roles.h"

#include <array>
#include <cstddef>
#include <utility>

namespace lumetry::atspi {
namespace {

/// The way through a tree that is deep but narrow. A longer one went past many children, which is
/// worth asking about in advance only if it is likely to be gone again.
constexpr std::size_t shortWay = 12;

double areaOf(const Extents& place) {
    return static_cast<double>(place.width) * place.height;
}

/// What the object has answered, if it has been asked.
std::optional<ObjectReference> childAtPointOf(const ObjectReference& object,
                                              const Inquiry& inquiry) {
    const Reply* reply = inquiry.known({object, Inquiry::About::childAtPoint});
    return reply ? referenceOf(*reply) : std::nullopt;
}

Inquiry::About aboutOf(Question question) {
    using About = Inquiry::About;
    return question == Question::parent   ? About::parent
           : question == Question::states ? About::states
                                          : About::children;
}

} // namespace

std::optional<HitTest::Hit> HitTest::objectAt(Point point, std::optional<pid_t> pid,
                                              Deadline deadline) {
    auto window = windows_.windowAt(point, pid);
    const auto owner = window && window->pid ? window->pid : pid;
    if (!window || !owner || !bus_.connect()) {
        return std::nullopt;
    }
    const RootSpace space = windows_.rootSpace();
    const Point at = space.toRoot(point);
    window->bounds = space.toRoot(window->bounds);
    window->client = space.toRoot(window->client);
    lastClient_ = window->client;
    auto object = objectIn(*window, *owner, at, deadline);
    if (!object) {
        return std::nullopt;
    }
    if (!window->popup) {
        topLevels_.noteHit(*owner, *object);
    }
    if (toolkits_.of(*object) == Toolkit::qt) {
        object = textBehind(cache_, std::move(*object), deadline);
    }
    const Pixel unit = unitAt(at, placementOf(*object));
    std::optional<TextLeaf> hit;
    for (const TextLeaf& text : textLeavesIn(*object, deadline)) {
        // Around a text of several lines is also what begins behind its end.
        if (text.place.contains(unit.x, unit.y) &&
            (!hit || areaOf(text.place) < areaOf(hit->place))) {
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
        const Placement placement =
            topLevel->toolkit == Toolkit::chromium ? Placement() : placementOf(topLevel->object);
        const Pixel at = unitAt(point, placement);
        const bool inPixels = habitsOf(topLevel->toolkit).hitsInPixels;
        const HitPoint hit = {inPixels ? unitAt(point, Placement()) : at, at};
        Inquiry inquiry(bus_, hit, topLevel->toolkit, deadline);
        if (lastTopLevel_ == topLevel->object) {
            askAboutLastWay(inquiry);
        }
        Descent descent = descend(inquiry, popovers_, *topLevel);
        if (descent.object && *descent.object != topLevel->object) {
            askWhatTellsRole(inquiry, *descent.object, habitsOf(topLevel->toolkit));
        }
        // Of one that was too slow, too: the next hit test begins where this one ended.
        if (descent.object || descent.outcome == Outcome::silent) {
            keepWhatHelps(inquiry, *topLevel);
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
        if (again && descent.outcome == Outcome::refused) {
            return topLevel->object;
        }
    }
    return std::nullopt;
}

/// Asks what tells what that object is, unless it was asked along on the last way; together with
/// what is shown of nearly every element, so that nothing waits longer for it.
void HitTest::askWhatTellsRole(Inquiry& inquiry, const ObjectReference& object,
                               const Habits& habits) {
    inquiry.tell(cache_);
    const auto role = integerOf(inquiry.reply({object, Inquiry::About::role})).value_or(-1);
    std::vector<Asked> asked;
    for (const Question question : questionsForRole(role, habits)) {
        const Inquiry::Query query{object, aboutOf(question)};
        if (inquiry.known(query) == nullptr) {
            asked.push_back({object, question});
        } else {
            static_cast<void>(inquiry.reply(query));
        }
    }
    if (const auto missing = asked.size(); missing > 0 && cache_.keeps()) {
        for (const Question shown : {Question::name, Question::text, Question::characterCount,
                                     Question::value, Question::children}) {
            asked.push_back({object, shown});
        }
        auto replies = cache_.ask(asked, inquiry.deadline());
        for (std::size_t index = 0; index < missing; ++index) {
            inquiry.take({object, aboutOf(asked[index].question)}, std::move(replies[index]));
        }
    }
    const Reply* parent = dependsOnParentsRole(role, habits)
                              ? inquiry.known({object, Inquiry::About::parent})
                              : nullptr;
    if (const auto around = parent != nullptr ? referenceOf(*parent) : std::nullopt) {
        inquiry.use(*around, {Inquiry::About::role});
    }
}

/// Chromium keeps the entries of a drop-down in the page, below the element that it drops from.
std::optional<ObjectReference> HitTest::contentOfHollowPopup(pid_t pid, Pixel at,
                                                             Deadline deadline) {
    auto opener = topLevels_.lastHit(pid);
    if (!opener) {
        return std::nullopt;
    }
    const auto isAtPoint = [at](const Extents& extents) { return extents.contains(at.x, at.y); };
    std::vector<ObjectReference> starts;
    starts.push_back(std::move(*opener));
    const Habits& habits = toolkits_.habitsFor(starts.front());
    return firstShowingBelow(bus_, std::move(starts), habits, isAtPoint, deadline);
}

void HitTest::askAboutLastWay(Inquiry& inquiry) {
    if (lastWay_.size() > shortWay) {
        inquiry.ask(std::array{Inquiry::Query{lastTopLevel_, Inquiry::About::childAtPoint}});
        if (childAtPointOf(lastTopLevel_, inquiry) != lastChild_) {
            return;
        }
    }
    inquiry.ask(lastWay_);
}

void HitTest::keepWhatHelps(const Inquiry& inquiry, const TopLevel& topLevel) {
    lastTopLevel_ = topLevel.object;
    lastWay_ = inquiry.used();
    lastChild_ = childAtPointOf(topLevel.object, inquiry);
    inquiry.tell(cache_);
}

} // namespace lumetry::atspi
