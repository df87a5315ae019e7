#include "platform/linux/atspi/tree/popups.h"

#include "platform/linux/atspi/tree/queries.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <set>
#include <utility>

namespace lumetry::atspi {
namespace {

constexpr std::size_t mostObjects = 1000;
/// A popup hangs from a button or menu, not from one of the rows of a long list.
constexpr std::size_t mostChildrenEach = 100;

/// How old what is known of popovers is when they are asked for anew, and how old it may become.
constexpr auto refreshInterval = std::chrono::milliseconds(150);
constexpr auto longestTrusted = std::chrono::milliseconds(300);
constexpr std::size_t mostPopovers = 64;

/// The same questions about each.
std::vector<Query> queriesAbout(const std::vector<ObjectReference>& objects,
                                std::initializer_list<Question> questions) {
    std::vector<Query> queries;
    for (const ObjectReference& object : objects) {
        for (const Question question : questions) {
            queries.push_back({object, question});
        }
    }
    return queries;
}

/// The children of all objects of a level that have not been seen yet.
std::vector<ObjectReference> unseenChildren(const std::vector<ObjectReference>& level,
                                            const Replies& replies,
                                            std::set<ObjectReference>& seen) {
    std::vector<ObjectReference> found;
    for (const ObjectReference& object : level) {
        auto children =
            replies.get<Question::children>(object).value_or(std::vector<ObjectReference>());
        children.resize(std::min(children.size(), mostChildrenEach));
        for (ObjectReference& child : children) {
            if (seen.size() < mostObjects && seen.insert(child).second) {
                found.push_back(std::move(child));
            }
        }
    }
    return found;
}

} // namespace

std::optional<ObjectReference> firstShowingBelow(Bus& bus, const Toolkits& toolkits,
                                                 std::vector<ObjectReference> starts,
                                                 const std::function<bool(const IntRect&)>& fits,
                                                 Deadline deadline) {
    std::set<ObjectReference> seen;
    std::vector<ObjectReference> level = std::move(starts);
    while (!level.empty() && Clock::now() < deadline) {
        const auto children = unseenChildren(
            level, exchange(bus, toolkits, queriesAbout(level, {Question::children}), deadline),
            seen);
        const auto replies = exchange(
            bus, toolkits, queriesAbout(children, {Question::extents, Question::states}), deadline);
        level.clear();
        for (const ObjectReference& child : children) {
            const auto states = replies.get<Question::states>(child).value_or(0);
            const auto extents = replies.get<Question::extents>(child);
            if (!hasState(states, toolkits.habitsFor(child).shown)) {
                continue;
            }
            if (extents && fits(*extents)) {
                return child;
            }
            level.push_back(child);
        }
    }
    return std::nullopt;
}

ObjectReference Popovers::covering(const ObjectReference& topLevel, const ObjectReference& child,
                                   IntPoint at, Deadline deadline) {
    if (topLevel != topLevel_ || Clock::now() - lookedAt_ > longestTrusted) {
        look(topLevel, deadline);
    }
    // On Wayland a popover has a surface of its own, and counts its place from there: where that
    // lies nobody says.
    const auto isAt = [at](const IntRect& extents) {
        return extents.contains(at) && extents.origin() != IntPoint{0, 0};
    };
    const auto isTopmost = [&](const Child& candidate) {
        return candidate.object == child || (candidate.extents && isAt(*candidate.extents));
    };
    // The last child is the topmost one.
    const auto topmost = std::find_if(children_.rbegin(), children_.rend(), isTopmost);
    return topmost == children_.rend() ? child : topmost->object;
}

void Popovers::look(const ObjectReference& topLevel, Deadline deadline) {
    topLevel_ = topLevel;
    askedAt_ = lookedAt_ = Clock::now();
    children_.clear();
    auto children =
        exchange(bus_, toolkits_, std::array{Query{topLevel, Question::children}}, deadline)
            .get<Question::children>(topLevel)
            .value_or(std::vector<ObjectReference>());
    children.resize(std::min(children.size(), mostPopovers));
    const auto replies =
        exchange(bus_, toolkits_, queriesAbout(children, {Question::extents}), deadline);
    for (ObjectReference& child : children) {
        const auto extents = replies.get<Question::extents>(child);
        children_.push_back({std::move(child), extents});
    }
}

void Popovers::refresh(const ObjectReference& topLevel) {
    if (topLevel != topLevel_ || topLevel.name.empty() ||
        Clock::now() - askedAt_ < refreshInterval) {
        return;
    }
    askedAt_ = Clock::now();
    bus_.send(requestFor({topLevel, Question::children}),
              lifetime_.guard([this, topLevel](const Reply& reply) {
                  auto children = read<Question::children>(reply);
                  if (children && topLevel == topLevel_) {
                      askPlaces(topLevel, std::move(*children));
                  }
              }));
}

/// What is known is replaced once the last of them has answered.
void Popovers::askPlaces(const ObjectReference& topLevel, std::vector<ObjectReference> children) {
    children.resize(std::min(children.size(), mostPopovers));
    const AtspiCoordType coordinates = toolkits_.habitsFor(topLevel).coordinates;
    const auto known = std::make_shared<Children>();
    known->reserve(children.size());
    for (const ObjectReference& child : children) {
        known->push_back({child, std::nullopt});
    }
    for (std::size_t place = 0; place < children.size(); ++place) {
        bus_.send(
            requestFor({children[place], Question::extents}, coordinates),
            lifetime_.guard([this, topLevel, known, place, asked = askedAt_](const Reply& reply) {
                (*known)[place].extents = read<Question::extents>(reply);
                if (place + 1 == known->size() && topLevel == topLevel_) {
                    children_ = *known;
                    lookedAt_ = asked;
                }
            }));
    }
}

} // namespace lumetry::atspi
