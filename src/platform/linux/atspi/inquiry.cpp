#include "platform/linux/atspi/inquiry.h"

#include "platform/linux/atspi/requests.h"
#include "platform/linux/atspi/states.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace lumetry::atspi {
namespace {

Message requestFor(const Inquiry::Query& query, Pixel at) {
    switch (query.about) {
    case Inquiry::About::childAtPoint:
        return getAccessibleAtPoint(query.object, at.x, at.y);
    case Inquiry::About::children:
        return getChildren(query.object);
    case Inquiry::About::extents:
        return getExtents(query.object);
    case Inquiry::About::parent:
        return getParent(query.object);
    case Inquiry::About::states:
        return getState(query.object);
    }
    return nullptr;
}

} // namespace

void Inquiry::ask(std::span<const Query> queries) {
    std::vector<Query> asked;
    std::vector<Message> requests;
    for (const Query& query : queries) {
        if (!replies_.contains(query)) {
            asked.push_back(query);
            requests.push_back(requestFor(query, at_));
        }
    }
    if (requests.empty()) {
        return;
    }
    auto replies = bus_.exchange(std::move(requests), deadline_);
    for (std::size_t index = 0; index < asked.size(); ++index) {
        replies_.insert_or_assign(std::move(asked[index]), std::move(replies[index]));
    }
}

const Reply& Inquiry::reply(const Query& query) {
    ask(std::span(&query, 1));
    if (std::ranges::find(used_, query) == used_.end()) {
        used_.push_back(query);
    }
    return replies_.at(query);
}

const Reply* Inquiry::known(const Query& query) const {
    const auto reply = replies_.find(query);
    return reply == replies_.end() ? nullptr : &reply->second;
}

bool Inquiry::isAtPoint(const ObjectReference& object) {
    const auto extents = extentsOf(reply({object, About::extents}));
    return extents && extents->contains(at_.x, at_.y);
}

bool Inquiry::isShowing(const ObjectReference& object) {
    return hasState(statesOf(reply({object, About::states})).value_or(0), ATSPI_STATE_SHOWING);
}

} // namespace lumetry::atspi
