#include "platform/linux/atspi/hit_test/child_at_point.h"

#include "platform/linux/atspi/bus/message.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

namespace lumetry::atspi {
namespace {

/// Of so many children it is worth asking all that may matter at once.
constexpr std::size_t askedAtOnce = 16;
/// More siblings than that are items that follow each other. Fewer may lie over one another.
constexpr std::size_t shortestList = 40;
constexpr std::size_t mostChildren = 300;

/// Children by their places in a list of siblings, both ends included.
struct Range {
    std::size_t first = 0;
    std::size_t last = 0;

    [[nodiscard]] std::size_t count() const { return last - first + 1; }
};

/// A child of which the place is known.
struct Landmark {
    std::size_t index = 0;
    IntRect place;
};

/// What those children report of their places; empty when one of them has none.
std::vector<Landmark> landmarksAt(PointQueries& queries,
                                  const std::vector<ObjectReference>& children,
                                  const std::vector<std::size_t>& indices) {
    std::vector<Query> places;
    places.reserve(indices.size());
    for (const std::size_t index : indices) {
        places.push_back({children[index], Question::extents});
    }
    queries.ask(places);
    std::vector<Landmark> landmarks;
    for (const std::size_t index : indices) {
        const auto place = queries.get<Question::extents>(children[index]);
        if (!place || place->isEmpty()) {
            return {};
        }
        landmarks.push_back({index, *place});
    }
    return landmarks;
}

/// Children that follow each other down (also in rows) or across, by the members of a place.
struct Axis {
    std::int32_t IntRect::*start;
    std::int32_t IntRect::*length;
    std::int32_t IntPoint::*point;

    [[nodiscard]] bool runsAlong(const std::vector<Landmark>& landmarks) const {
        const auto startOf = [this](const Landmark& landmark) { return landmark.place.*start; };
        return landmarks.size() > 1 && startOf(landmarks.front()) < startOf(landmarks.back()) &&
               std::ranges::is_sorted(landmarks, {}, startOf);
    }

    /// The part of the range that landmarks on both sides of the point leave.
    [[nodiscard]] Range narrowed(Range range, const std::vector<Landmark>& landmarks,
                                 IntPoint at) const {
        for (const Landmark& landmark : landmarks) {
            const std::int64_t end = std::int64_t{landmark.place.*start} + landmark.place.*length;
            if (end <= at.*point) {
                range.first = std::max(range.first, landmark.index);
            } else if (landmark.place.*start > at.*point) {
                range.last = std::min(range.last, landmark.index);
            }
        }
        return range;
    }
};

std::vector<std::size_t> spreadOver(const Range& range, std::size_t steps) {
    std::vector<std::size_t> indices;
    for (std::size_t step = 0; step <= steps; ++step) {
        indices.push_back(range.first + (range.last - range.first) * step / steps);
    }
    return indices;
}

/// Some children next to each other.
/// @param share where in the range, from 0 to 1
std::vector<std::size_t> neighborsIn(const Range& range, double share) {
    constexpr std::size_t neighbors = 3;
    const auto middle =
        range.first + static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) *
                                               static_cast<double>(range.last - range.first));
    const std::size_t last = std::min(middle + neighbors, range.last);
    std::vector<std::size_t> indices;
    for (std::size_t index = std::max(middle, range.first + neighbors) - neighbors; index <= last;
         ++index) {
        indices.push_back(index);
    }
    return indices;
}

/// Where the point is in the range if its children are all of the same length.
/// @param landmarks both ends of the range among them
double shareOf(const Range& range, const Axis& axis, const std::vector<Landmark>& landmarks,
               IntPoint at) {
    const auto startOf = [&](std::size_t index) -> double {
        return std::ranges::find(landmarks, index, &Landmark::index)->place.*axis.start;
    };
    const double begin = startOf(range.first);
    return (at.*axis.point - begin) / std::max(startOf(range.last) - begin, 1.0);
}

/// Narrows the range until few are left, by the places of some in it.
Range narrowedToFew(PointQueries& queries, const std::vector<ObjectReference>& children,
                    const Axis& axis, Range range, std::vector<Landmark> landmarks) {
    constexpr int mostRounds = 12;
    range = axis.narrowed(range, landmarks, queries.at());
    for (int round = 0; round < mostRounds; ++round) {
        if (range.first > range.last || range.count() <= askedAtOnce) {
            break;
        }
        // Where guesses are far off, halves lead on.
        constexpr double half = 0.5;
        const double share = round % 2 == 0 ? shareOf(range, axis, landmarks, queries.at()) : half;
        const auto found = landmarksAt(queries, children, neighborsIn(range, share));
        landmarks.insert(landmarks.end(), found.begin(), found.end());
        range = axis.narrowed(range, found, queries.at());
    }
    return range;
}

/// Of children that follow each other, those that can be at the point, found by the places of a
/// few. Of any others all, up to a limit.
std::vector<std::size_t> candidatesAmong(PointQueries& queries,
                                         const std::vector<ObjectReference>& children) {
    constexpr std::size_t steps = 4;
    constexpr Axis down{&IntRect::y, &IntRect::height, &IntPoint::y};
    constexpr Axis across{&IntRect::x, &IntRect::width, &IntPoint::x};
    const Range all{0, children.size() - 1};
    const auto spread = spreadOver(all, steps);
    const auto landmarks = landmarksAt(queries, children, spread);
    Range range = all;
    for (const Axis& axis : {down, across}) {
        if (!axis.runsAlong(landmarks)) {
            continue;
        }
        const Range narrowed = narrowedToFew(queries, children, axis, all, landmarks);
        if (narrowed.first <= narrowed.last) {
            range = narrowed;
            break;
        }
    }
    // What is asked about already counts, too: the first or the last may lie beside or over all.
    std::set<std::size_t> candidates(spread.begin(), spread.end());
    for (std::size_t index = range.first; index <= range.last && index - range.first < mostChildren;
         ++index) {
        candidates.insert(index);
    }
    return {candidates.begin(), candidates.end()};
}

} // namespace

std::optional<ObjectReference> childAtPoint(PointQueries& queries, const ObjectReference& object) {
    auto children =
        queries.get<Question::children>(object).value_or(std::vector<ObjectReference>());
    const bool few = children.size() <= askedAtOnce;
    if (children.size() > shortestList) {
        std::vector<ObjectReference> candidates;
        for (const std::size_t index : candidatesAmong(queries, children)) {
            candidates.push_back(std::move(children[index]));
        }
        children = std::move(candidates);
    }
    std::vector<Query> wanted;
    for (const ObjectReference& child : children) {
        wanted.push_back({child, Question::extents});
        // Of many, few are at the point: only those are asked whether they show.
        if (few) {
            wanted.push_back({child, Question::states});
        }
    }
    queries.ask(wanted);
    const auto isSeen = [&queries](const ObjectReference& child) {
        return queries.isAtPoint(child) && queries.isShowing(child);
    };
    const auto topmost = std::find_if(children.rbegin(), children.rend(), isSeen);
    return topmost == children.rend() ? std::nullopt : std::optional(*topmost);
}

} // namespace lumetry::atspi
