#include "platform/linux/atspi/top_levels.h"

#include "platform/linux/atspi/placement.h"
#include "platform/linux/atspi/popup_search.h"
#include "platform/linux/atspi/requests.h"
#include "platform/linux/atspi/states.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::size_t mostTopLevels = 200;
constexpr std::size_t mostWindowsRemembered = 500;
/// A popup fills its window up to a border; less than this is something else.
constexpr double leastPopupLikeness = 0.7;
/// Another window of the same application may overlap this one, but not by much.
constexpr double leastWindowLikeness = 0.2;
/// A popup may not be there yet when its window is.
constexpr int mostSearches = 3;
/// Windows as alike as this cannot be told apart by their places.
constexpr double ambiguity = 0.02;

Toolkit toolkitNamed(std::string_view name) {
    if (name == "gtk") {
        return Toolkit::gtk;
    }
    if (name == "Gecko") {
        return Toolkit::gecko;
    }
    if (name == "Qt") {
        return Toolkit::qt;
    }
    return name == "Chromium" ? Toolkit::chromium : Toolkit::other;
}

} // namespace

std::optional<TopLevel> TopLevels::of(const DesktopWindow& window, const Rect& bounds, pid_t pid,
                                      Deadline deadline) {
    Known& known = entry(window.id);
    if (known.topLevel || known.searches >= mostSearches) {
        return known.topLevel;
    }
    const auto topLevels = topLevelsOf(pid, deadline);
    auto candidates = rate(topLevels, bounds, deadline);
    const double least = window.popup ? leastPopupLikeness : leastWindowLikeness;
    std::erase_if(candidates,
                  [&](const Candidate& candidate) { return candidate.likeness < least; });
    if (candidates.empty()) {
        known.topLevel =
            window.popup ? searchPopup(topLevels, bounds, pid, deadline) : std::nullopt;
        known.searches += window.popup && !known.topLevel ? 1 : 0;
        return known.topLevel;
    }
    std::ranges::sort(candidates, [](const Candidate& a, const Candidate& b) {
        const auto rank = [](const Candidate& candidate) {
            return std::tuple(candidate.showing,
                              candidate.likeness + (candidate.active ? ambiguity : 0));
        };
        return rank(a) > rank(b);
    });
    const Candidate& best = candidates.front();
    const bool certain = candidates.size() == 1 || best.active ||
                         best.showing != candidates[1].showing ||
                         best.likeness - candidates[1].likeness > ambiguity;
    if (certain) {
        known.topLevel = best.topLevel;
        learnScale(best);
    }
    return best.topLevel;
}

TopLevels::Known& TopLevels::entry(std::uint32_t window) {
    if (generation_ != bus_.generation() || known_.size() > mostWindowsRemembered) {
        generation_ = bus_.generation();
        known_.clear();
        lastHits_.clear();
        scales_.clear();
        toolkits_.clear();
        windowScales_.clear();
    }
    return known_[window];
}

/// The windows of all the process's applications, as they list them.
std::vector<TopLevel> TopLevels::topLevelsOf(pid_t pid, Deadline deadline) {
    const auto roots = processes_.rootsOf(pid, deadline);
    std::vector<Message> requests;
    for (const ObjectReference& root : roots) {
        requests.push_back(getChildren(root));
        requests.push_back(getToolkitName(root));
    }
    const auto replies = bus_.exchange(std::move(requests), deadline);
    std::vector<TopLevel> topLevels;
    for (std::size_t index = 0; index < roots.size(); ++index) {
        const Reply& children = replies[2 * index];
        if (children.outcome == Outcome::gone) {
            processes_.forget(roots[index].name);
        }
        const Toolkit toolkit = toolkitNamed(textOf(replies[2 * index + 1]).value_or(""));
        toolkits_.insert_or_assign(roots[index].name, toolkit);
        for (ObjectReference& child :
             referencesOf(children).value_or(std::vector<ObjectReference>())) {
            topLevels.push_back({std::move(child), toolkit});
        }
    }
    topLevels.resize(std::min(topLevels.size(), mostTopLevels));
    return topLevels;
}

std::vector<TopLevels::Candidate> TopLevels::rate(const std::vector<TopLevel>& topLevels,
                                                  const Rect& bounds, Deadline deadline) {
    std::vector<Message> requests;
    for (const TopLevel& topLevel : topLevels) {
        requests.push_back(getExtents(topLevel.object));
        requests.push_back(getState(topLevel.object));
    }
    const auto replies = bus_.exchange(std::move(requests), deadline);
    std::vector<Candidate> candidates;
    for (std::size_t index = 0; index < topLevels.size(); ++index) {
        const Extents extents = extentsOf(replies[2 * index]).value_or(Extents());
        const auto known = scales_.find(topLevels[index].object.name);
        const double scale = known != scales_.end() ? known->second : scaleBetween(extents, bounds);
        const std::uint64_t states = statesOf(replies[2 * index + 1]).value_or(0);
        candidates.push_back({topLevels[index], hasState(states, ATSPI_STATE_SHOWING),
                              hasState(states, ATSPI_STATE_ACTIVE),
                              likeness(placeOf(extents, scale), bounds), scale});
    }
    return candidates;
}

std::optional<TopLevel> TopLevels::searchPopup(const std::vector<TopLevel>& topLevels,
                                               const Rect& bounds, pid_t pid, Deadline deadline) {
    std::vector<ObjectReference> starts;
    if (auto opener = lastHit(pid)) {
        starts.push_back(std::move(*opener));
    }
    for (const TopLevel& topLevel : topLevels) {
        starts.push_back(topLevel.object);
    }
    const double scale = topLevels.empty() ? 1 : scaleOf(topLevels.front().object);
    const auto fills = [&bounds, scale](const Extents& extents) {
        return likeness(placeOf(extents, scale), bounds) >= leastPopupLikeness;
    };
    auto found = firstShowingBelow(bus_, std::move(starts), fills, deadline);
    return found ? std::optional(TopLevel{std::move(*found), Toolkit::other}) : std::nullopt;
}

/// Chromium reports its windows in the toolkit's units, but takes points and reports what is on its
/// pages in pixels.
void TopLevels::learnScale(const Candidate& candidate) {
    if (candidate.topLevel.toolkit == Toolkit::chromium) {
        windowScales_[candidate.topLevel.object] = candidate.scale;
    } else {
        scales_.emplace(candidate.topLevel.object.name, candidate.scale);
    }
}

double TopLevels::scaleOf(const ObjectReference& object) const {
    if (const auto scale = windowScales_.find(object); scale != windowScales_.end()) {
        return scale->second;
    }
    const auto scale = scales_.find(object.name);
    return scale == scales_.end() ? 1 : scale->second;
}

Toolkit TopLevels::toolkitOf(const ObjectReference& object) const {
    const auto toolkit = toolkits_.find(object.name);
    return toolkit == toolkits_.end() ? Toolkit::other : toolkit->second;
}

std::optional<ObjectReference> TopLevels::lastHit(pid_t pid) const {
    const auto hit = lastHits_.find(pid);
    return hit == lastHits_.end() ? std::nullopt : std::optional(hit->second);
}

} // namespace lumetry::atspi
