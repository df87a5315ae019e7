#include "platform/linux/atspi/tree/top_levels.h"

#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/popups.h"
#include "platform/linux/atspi/tree/queries.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::size_t mostTopLevels = 200;
constexpr std::size_t mostWindowsRemembered = 500;
/// A popup fills its window up to a border; less than this is something else.
constexpr double leastPopupOverlap = 0.7;
/// Another window of the same application may overlap this one, but not by much.
constexpr double leastWindowOverlap = 0.2;
/// A popup may not be there yet when its window is.
constexpr int mostSearches = 3;
/// Windows as alike as this cannot be told apart by their places.
constexpr double ambiguity = 0.02;

/// The same as from the window's own origin, which goes with it when it is moved.
Placement relativeTo(const DesktopWindow& window, const Placement& placement) {
    return {placement.scale,
            {placement.origin.x - window.client.x, placement.origin.y - window.client.y}};
}

} // namespace

std::optional<TopLevel> TopLevels::at(Point at, const DesktopWindow& window, pid_t pid,
                                      Deadline deadline) {
    auto topLevel = find(window, pid, deadline);
    if (topLevel && toolkits_.habits(topLevel->toolkit).placelessFrames) {
        framePlaces_.insert_or_assign(topLevel->object, window.bounds);
    }
    if (!topLevel || !toolkits_.habits(topLevel->toolkit).embeds) {
        return topLevel;
    }
    // What was hit before may have lain below the menu bar of this window or another one.
    placements_[topLevel->object.name].origin = {};
    Known& known = entry(window.id);
    if (!window.popup && !std::exchange(known.embeddedIsKnown, true)) {
        known.embedded = embeddedIn(*topLevel, window, deadline);
    }
    const Point inWindow = {at.x - window.client.x, at.y - window.client.y};
    if (!known.embedded || !known.embedded->area.contains(inWindow)) {
        return topLevel;
    }
    const auto& [object, area, placement] = *known.embedded;
    placements_.insert_or_assign(object.name, placement);
    return TopLevel{object, topLevel->toolkit};
}

/// Told to begin where the window does, it ends as much above the window's end as the menu bar is
/// high.
std::optional<TopLevels::Embedded>
TopLevels::embeddedIn(const TopLevel& topLevel, const DesktopWindow& window, Deadline deadline) {
    const Rect& client = window.client;
    const Placement placement = {placementOf(topLevel.object).scale, {}};
    Rect told;
    const auto fits = [&](const IntRect& extents) {
        constexpr double leastShare = 0.5;
        told = placeOf(extents, placement);
        return std::abs(told.x - client.x) < 2 && std::abs(told.y - client.y) < 2 &&
               std::abs(told.width - client.width) < 2 && told.height < client.height - 1 &&
               told.height > leastShare * client.height;
    };
    auto object = firstShowingBelow(bus_, toolkits_, {topLevel.object}, fits, deadline);
    if (!object) {
        return std::nullopt;
    }
    const double shift = client.maxY() - told.maxY();
    return Embedded{
        std::move(*object), {0, shift, client.width, told.height}, {placement.scale, {0, shift}}};
}

std::optional<TopLevel> TopLevels::find(const DesktopWindow& window, pid_t pid, Deadline deadline) {
    Known& known = entry(window.id);
    if (known.insideWindow) {
        const auto& [scale, inset] = *known.insideWindow;
        placements_.insert_or_assign(
            known.topLevel->object.name,
            Placement{scale, {window.client.x + inset.x, window.client.y + inset.y}});
    }
    if (known.topLevel || known.searches >= mostSearches) {
        return known.topLevel;
    }
    const auto topLevels = topLevelsOf(pid, deadline);
    auto candidates = rate(topLevels, window, deadline);
    const double least = window.popup ? leastPopupOverlap : leastWindowOverlap;
    std::erase_if(candidates,
                  [&](const Candidate& candidate) { return candidate.overlap < least; });
    if (candidates.empty()) {
        known.topLevel =
            window.popup ? searchPopup(topLevels, window, pid, deadline) : std::nullopt;
        known.searches += window.popup && !known.topLevel ? 1 : 0;
        return known.topLevel;
    }
    std::ranges::sort(candidates, [](const Candidate& a, const Candidate& b) {
        const auto rank = [](const Candidate& candidate) {
            return std::tuple(candidate.showing,
                              candidate.overlap + (candidate.active ? ambiguity : 0));
        };
        return rank(a) > rank(b);
    });
    Candidate& best = candidates.front();
    if (window.surface && best.topLevel.toolkit == Toolkit::chromium) {
        // Its window is reported in points there, and what is on its pages in device pixels.
        framePlaces_.insert_or_assign(best.topLevel.object, best.place);
        best.placement.scale = 1 / window.pixelsPerUnit;
    }
    const bool fits = best.showing && lieAlike(best.place, window.bounds);
    const bool distinct = candidates.size() == 1 || best.active ||
                          best.showing != candidates[1].showing ||
                          best.overlap - candidates[1].overlap > ambiguity;
    // The object of a new window may not be listed yet: another one's is not to be kept for it.
    const bool certain = fits && distinct;
    const bool countsFromHere = countsFromWindow(best.topLevel.toolkit);
    if (certain || countsFromHere) {
        learnPlacement(best);
    }
    if (certain) {
        known.topLevel = best.topLevel;
        if (countsFromHere) {
            known.insideWindow = relativeTo(window, best.placement);
        }
    }
    return best.topLevel;
}

TopLevels::Known& TopLevels::entry(std::uint32_t window) {
    if (generation_ != bus_.generation() || known_.size() > mostWindowsRemembered) {
        generation_ = bus_.generation();
        known_.clear();
        lastHits_.clear();
        placements_.clear();
        toolkits_.forgetAll();
        windowScales_.clear();
        framePlaces_.clear();
    }
    return known_[window];
}

/// The windows of all the process's applications, as they list them.
std::vector<TopLevel> TopLevels::topLevelsOf(pid_t pid, Deadline deadline) {
    const auto roots = processes_.rootsOf(pid, deadline);
    std::vector<Query> queries;
    for (const ObjectReference& root : roots) {
        queries.insert(
            queries.end(),
            {{root, Question::children}, {root, Question::toolkitName}, {root, Question::name}});
    }
    const Replies replies = exchange(bus_, toolkits_, queries, deadline);
    std::vector<TopLevel> topLevels;
    for (const ObjectReference& root : roots) {
        if (replies.outcome({root, Question::children}) == Outcome::gone) {
            processes_.forget(root.name);
        }
        const Toolkit toolkit = toolkitNamed(replies.get<Question::toolkitName>(root).value_or(""),
                                             replies.get<Question::name>(root).value_or(""));
        toolkits_.remember(root.name, toolkit);
        for (ObjectReference& child :
             replies.get<Question::children>(root).value_or(std::vector<ObjectReference>())) {
            topLevels.push_back({std::move(child), toolkit});
        }
    }
    topLevels.resize(std::min(topLevels.size(), mostTopLevels));
    return topLevels;
}

std::vector<TopLevels::Candidate> TopLevels::rate(const std::vector<TopLevel>& topLevels,
                                                  const DesktopWindow& window, Deadline deadline) {
    std::vector<Query> queries;
    for (const auto& [object, toolkit] : topLevels) {
        queries.insert(queries.end(), {{object, Question::extents}, {object, Question::states}});
    }
    const Replies replies = exchange(bus_, toolkits_, queries, deadline);
    const auto contents = contentsOf(topLevels, deadline);
    std::vector<Candidate> candidates;
    for (const TopLevel& topLevel : topLevels) {
        const auto states = replies.get<Question::states>(topLevel.object).value_or(0);
        Candidate candidate;
        candidate.topLevel = topLevel;
        candidate.showing = hasState(states, toolkits_.habits(topLevel.toolkit).shown);
        candidate.active = hasState(states, ATSPI_STATE_ACTIVE);
        if (const auto content = contents.find(topLevel.object); content != contents.end()) {
            const IntRect& inside = content->second;
            candidate.placement = placementFilling(inside, window.client);
            candidate.place = placeOf(inside, {candidate.placement.scale, {}});
        } else {
            const auto extents =
                replies.get<Question::extents>(topLevel.object).value_or(IntRect());
            candidate.placement = placementFrom(extents, topLevel, window);
            candidate.place = placeOf(extents, candidate.placement);
        }
        candidate.overlap = intersectionOverUnion(candidate.place, window.bounds);
        candidates.push_back(std::move(candidate));
    }
    return candidates;
}

bool TopLevels::countsFromWindow(Toolkit toolkit) const {
    return toolkits_.habits(toolkit).coordinates == ATSPI_COORD_TYPE_WINDOW;
}

Placement TopLevels::placementFrom(const IntRect& reported, const TopLevel& topLevel,
                                   const DesktopWindow& window) const {
    if (window.surface) {
        return placementOnSurface(reported, window.client, window.bounds, *window.surface);
    }
    if (countsFromWindow(topLevel.toolkit)) {
        return placementInside(reported, window.client);
    }
    const auto known = placements_.find(topLevel.object.name);
    return known != placements_.end() ? known->second
                                      : Placement{scaleBetween(reported, window.bounds), {}};
}

/// What fills the frames that do not say where they are, by the frame.
std::map<ObjectReference, IntRect> TopLevels::contentsOf(const std::vector<TopLevel>& topLevels,
                                                         Deadline deadline) {
    std::vector<Query> frames;
    for (const auto& [object, toolkit] : topLevels) {
        if (toolkits_.habits(toolkit).placelessFrames) {
            frames.push_back({object, Question::children});
        }
    }
    const Replies children = exchange(bus_, toolkits_, frames, deadline);
    std::map<ObjectReference, ObjectReference> fillings;
    std::vector<Query> places;
    for (const Query& frame : frames) {
        const auto inside = children.get<Question::children>(frame.object);
        if (inside && !inside->empty()) {
            places.push_back({inside->front(), Question::extents});
            fillings.emplace(frame.object, inside->front());
        }
    }
    const Replies replies = exchange(bus_, toolkits_, places, deadline);
    std::map<ObjectReference, IntRect> contents;
    for (const auto& [frame, filling] : fillings) {
        if (const auto extents = replies.get<Question::extents>(filling)) {
            contents.emplace(frame, *extents);
        }
    }
    return contents;
}

/// What an application may count from in something that has a window of its own without being one
/// of those it lists.
std::vector<Placement> TopLevels::placementsInPopup(const IntRect& reported,
                                                    const TopLevel& topLevel,
                                                    const DesktopWindow& window) const {
    if (window.surface && topLevel.toolkit != Toolkit::gtk4) {
        std::vector<Placement> possible = {{1, window.surface->origin()}};
        if (window.openerSurface) {
            possible.push_back({1, window.openerSurface->origin()});
        }
        return possible;
    }
    return {countsFromWindow(topLevel.toolkit) ? placementFilling(reported, window.client)
                                               : placementOf(topLevel.object)};
}

std::optional<TopLevel> TopLevels::searchPopup(const std::vector<TopLevel>& topLevels,
                                               const DesktopWindow& window, pid_t pid,
                                               Deadline deadline) {
    if (topLevels.empty()) {
        return std::nullopt;
    }
    std::vector<ObjectReference> starts;
    if (auto opener = lastHit(pid)) {
        starts.push_back(std::move(*opener));
    }
    for (const TopLevel& topLevel : topLevels) {
        starts.push_back(topLevel.object);
    }
    const Toolkit toolkit = topLevels.front().toolkit;
    Placement placement;
    const auto fills = [&](const IntRect& extents) {
        const auto possible = placementsInPopup(extents, topLevels.front(), window);
        const auto fitting = std::ranges::find_if(possible, [&](const Placement& one) {
            return intersectionOverUnion(placeOf(extents, one), window.bounds) >= leastPopupOverlap;
        });
        placement = fitting == possible.end() ? placement : *fitting;
        return fitting != possible.end();
    };
    auto found = firstShowingBelow(bus_, toolkits_, std::move(starts), fills, deadline);
    if (!found) {
        return std::nullopt;
    }
    if (countsFromWindow(toolkit)) {
        placements_.insert_or_assign(found->name, placement);
        entry(window.id).insideWindow = relativeTo(window, placement);
        return TopLevel{std::move(*found), toolkit};
    }
    // Inside of it, most answer like any toolkit.
    return TopLevel{std::move(*found), Toolkit::other};
}

/// Chromium reports its windows in the toolkit's units, but takes points and reports what is on its
/// pages in pixels.
void TopLevels::learnPlacement(const Candidate& candidate) {
    const auto& [object, toolkit] = candidate.topLevel;
    if (toolkit == Toolkit::chromium && !countsFromWindow(toolkit)) {
        windowScales_[object] = candidate.placement.scale;
    } else if (countsFromWindow(toolkit) || toolkits_.habits(toolkit).placelessFrames) {
        placements_.insert_or_assign(object.name, candidate.placement);
    } else {
        placements_.emplace(object.name, candidate.placement);
    }
}

std::optional<Rect> TopLevels::placeOfFrame(const ObjectReference& object) const {
    const auto place = framePlaces_.find(object);
    return place == framePlaces_.end() ? std::nullopt : std::optional(place->second);
}

Placement TopLevels::placementOf(const ObjectReference& object) const {
    if (const auto scale = windowScales_.find(object); scale != windowScales_.end()) {
        return {scale->second, {}};
    }
    const auto placement = placements_.find(object.name);
    return placement == placements_.end() ? Placement() : placement->second;
}

std::optional<ObjectReference> TopLevels::lastHit(pid_t pid) const {
    const auto hit = lastHits_.find(pid);
    return hit == lastHits_.end() ? std::nullopt : std::optional(hit->second);
}

} // namespace lumetry::atspi
