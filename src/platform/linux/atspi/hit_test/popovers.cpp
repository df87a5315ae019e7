#include "platform/linux/atspi/hit_test/popovers.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr auto longestTrusted = std::chrono::milliseconds(300);
constexpr std::size_t mostChildren = 64;

} // namespace

ObjectReference Popovers::covering(const ObjectReference& topLevel, const ObjectReference& child,
                                   Pixel at, Deadline deadline) {
    if (topLevel != topLevel_ || Clock::now() - lookedAt_ > longestTrusted) {
        look(topLevel, deadline);
    }
    const auto isTopmost = [&](const Child& candidate) {
        return candidate.object == child ||
               (candidate.extents && candidate.extents->contains(at.x, at.y));
    };
    // The last child is the topmost one.
    const auto topmost = std::find_if(children_.rbegin(), children_.rend(), isTopmost);
    return topmost == children_.rend() ? child : topmost->object;
}

void Popovers::look(const ObjectReference& topLevel, Deadline deadline) {
    topLevel_ = topLevel;
    lookedAt_ = Clock::now();
    children_.clear();
    auto children = referencesOf(bus_.exchange(getChildren(topLevel), deadline))
                        .value_or(std::vector<ObjectReference>());
    children.resize(std::min(children.size(), mostChildren));
    std::vector<Message> requests;
    requests.reserve(children.size());
    for (const ObjectReference& child : children) {
        requests.push_back(getExtents(child, ATSPI_COORD_TYPE_SCREEN));
    }
    const auto replies = bus_.exchange(std::move(requests), deadline);
    for (std::size_t i = 0; i < children.size(); ++i) {
        children_.push_back({std::move(children[i]), extentsOf(replies[i])});
    }
}

} // namespace lumetry::atspi
