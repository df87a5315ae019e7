#include "platform/linux/atspi/hit_test.h"

#include "platform/linux/atspi/descent.h"
#include "platform/linux/atspi/popup_search.h"
#include "platform/linux/atspi/text_behind.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace lumetry::atspi {
namespace {

/// The way through a tree that is deep but narrow. A longer one went past many children, which is
/// worth asking about in advance only if it is likely to be gone again.
constexpr std::size_t shortWay = 12;

std::int32_t pixel(double coordinate) {
    constexpr double farthest = 1 << 30;
    // Not a number comes out as a place where nothing is.
    return static_cast<std::int32_t>(
        coordinate > -farthest ? std::min(std::floor(coordinate), farthest) : -farthest);
}

double areaOf(const Extents& place) {
    return static_cast<double>(place.width) * place.height;
}

/// What the object has answered, if it has been asked.
std::optional<ObjectReference> childAtPointOf(const ObjectReference& object,
                                              const Inquiry& inquiry) {
    const Reply* reply = inquiry.known({object, Inquiry::About::childAtPoint});
    return reply ? referenceOf(*reply) : std::nullopt;
}

} // namespace

std::optional<HitTest::Hit> HitTest::objectAt(Point point, std::optional<pid_t> pid,
                                              Deadline deadline) {
    const auto window = windows_.windowAt(point, pid);
    const auto owner = window && window->pid ? window->pid : pid;
    if (!window || !owner || !bus_.connect()) {
        return std::nullopt;
    }
    const Point origin = windows_.accessibilityOrigin();
    const Point at{point.x + origin.x, point.y + origin.y};
    const Rect bounds{window->bounds.x + origin.x, window->bounds.y + origin.y,
                      window->bounds.width, window->bounds.height};
    auto object = objectIn(*window, bounds, *owner, at, deadline);
    if (!object) {
        return std::nullopt;
    }
    if (!window->popup) {
        topLevels_.noteHit(*owner, *object);
    }
    if (topLevels_.toolkitOf(*object) == Toolkit::qt) {
        object = textBehind(answers_, std::move(*object), deadline);
    }
    const double scale = scaleOf(*object);
    const Pixel unit{pixel(at.x / scale), pixel(at.y / scale)};
    std::optional<BareText> hit;
    for (const BareText& text : bareTextsIn(*object, deadline)) {
        // Around a text of several lines is also what begins behind its end.
        if (text.place.contains(unit.x, unit.y) &&
            (!hit || areaOf(text.place) < areaOf(hit->place))) {
            hit = text;
        }
    }
    return Hit{std::move(*object), *owner, hit};
}

std::optional<ObjectReference> HitTest::objectIn(const DesktopWindow& window, const Rect& bounds,
                                                 pid_t pid, Point point, Deadline deadline) {
    for (const bool again : {false, true}) {
        const auto topLevel = topLevels_.of(window, bounds, pid, deadline);
        if (!topLevel) {
            return std::nullopt;
        }
        const double scale =
            topLevel->toolkit == Toolkit::chromium ? 1 : topLevels_.scaleOf(topLevel->object);
        const Pixel at{pixel(point.x / scale), pixel(point.y / scale)};
        Inquiry inquiry(bus_, at, deadline);
        if (lastTopLevel_ == topLevel->object) {
            askAboutLastWay(inquiry);
        }
        Descent descent = descend(inquiry, popovers_, *topLevel);
        if (descent.object) {
            keepWhatHelps(inquiry, *topLevel, *descent.object);
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
    return firstShowingBelow(bus_, std::move(starts), isAtPoint, deadline);
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

void HitTest::keepWhatHelps(const Inquiry& inquiry, const TopLevel& topLevel,
                            const ObjectReference& object) {
    lastTopLevel_ = topLevel.object;
    lastWay_ = inquiry.used();
    lastChild_ = childAtPointOf(topLevel.object, inquiry);
    constexpr std::array<std::pair<Inquiry::About, Question>, 2> kept = {
        {{Inquiry::About::extents, Question::extents},
         {Inquiry::About::children, Question::children}}};
    for (const auto& [about, question] : kept) {
        for (const Inquiry::Query& query : inquiry.used()) {
            const Reply* reply = query.about == about ? inquiry.known(query) : nullptr;
            if (reply) {
                answers_.remember({query.object, question}, *reply);
            }
        }
        if (const Reply* reply = inquiry.known({object, about})) {
            answers_.remember({object, question}, *reply);
        }
    }
}

} // namespace lumetry::atspi
