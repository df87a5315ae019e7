#include "platform/linux/atspi/tree/popup_search.h"

#include "platform/linux/atspi/bus/requests.h"
#include "platform/linux/atspi/tree/states.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::size_t mostObjects = 1000;
/// A popup hangs from a button or menu, not from one of the rows of a long list.
constexpr std::size_t mostChildrenEach = 100;

/// The children of all objects of a level that have not been seen yet.
std::vector<ObjectReference> childrenOf(Bus& bus, const std::vector<ObjectReference>& level,
                                        std::set<ObjectReference>& seen, Deadline deadline) {
    std::vector<Message> requests;
    requests.reserve(level.size());
    for (const ObjectReference& object : level) {
        requests.push_back(getChildren(object));
    }
    std::vector<ObjectReference> found;
    for (const Reply& reply : bus.exchange(std::move(requests), deadline)) {
        auto children = referencesOf(reply).value_or(std::vector<ObjectReference>());
        children.resize(std::min(children.size(), mostChildrenEach));
        for (ObjectReference& child : children) {
            if (seen.size() < mostObjects && seen.insert(child).second) {
                found.push_back(std::move(child));
            }
        }
    }
    return found;
}

struct Place {
    ObjectReference object;
    std::optional<Extents> extents;
    bool showing = false;
};

std::vector<Place> placesOf(Bus& bus, std::vector<ObjectReference> level, const Habits& habits,
                            Deadline deadline) {
    std::vector<Message> requests;
    for (const ObjectReference& object : level) {
        requests.push_back(getExtents(object, habits.coordinates));
        requests.push_back(getState(object));
    }
    const auto replies = bus.exchange(std::move(requests), deadline);
    std::vector<Place> places;
    for (std::size_t index = 0; index < level.size(); ++index) {
        const std::uint64_t states = statesOf(replies[2 * index + 1]).value_or(0);
        places.push_back({std::move(level[index]), extentsOf(replies[2 * index]),
                          hasState(states, habits.shown)});
    }
    return places;
}

} // namespace

std::optional<ObjectReference> firstShowingBelow(Bus& bus, std::vector<ObjectReference> starts,
                                                 const Habits& habits,
                                                 const std::function<bool(const Extents&)>& fits,
                                                 Deadline deadline) {
    std::set<ObjectReference> seen;
    std::vector<ObjectReference> level = std::move(starts);
    while (!level.empty() && Clock::now() < deadline) {
        auto places = placesOf(bus, childrenOf(bus, level, seen, deadline), habits, deadline);
        level.clear();
        for (Place& place : places) {
            if (place.showing && place.extents && fits(*place.extents)) {
                return std::move(place.object);
            }
            if (place.showing) {
                level.push_back(std::move(place.object));
            }
        }
    }
    return std::nullopt;
}

} // namespace lumetry::atspi
