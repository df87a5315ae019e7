#include "platform/linux/atspi/inquiry.h"

#include "platform/linux/atspi/requests.h"
#include "platform/linux/atspi/states.h"

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
    std::vector<Query> missing;
    std::vector<Message> requests;
    for (const Query& query : queries) {
        if (!asked_.contains(query)) {
            missing.push_back(query);
            requests.push_back(requestFor(query, at_));
        }
    }
    if (requests.empty()) {
        return;
    }
    auto replies = bus_.exchange(std::move(requests), deadline_);
    for (std::size_t index = 0; index < missing.size(); ++index) {
        asked_.insert_or_assign(std::move(missing[index]), Asked{std::move(replies[index]), false});
    }
}

const Reply& Inquiry::reply(const Query& query) {
    ask(std::span(&query, 1));
    Asked& asked = asked_.at(query);
    if (!std::exchange(asked.used, true)) {
        used_.push_back(query);
    }
    return asked.reply;
}

const Reply* Inquiry::known(const Query& query) const {
    const auto asked = asked_.find(query);
    return asked == asked_.end() ? nullptr : &asked->second.reply;
}

bool Inquiry::isAtPoint(const ObjectReference& object) {
    const auto extents = extentsOf(reply({object, About::extents}));
    return extents && extents->contains(at_.x, at_.y);
}

bool Inquiry::isShowing(const ObjectReference& object) {
    return hasState(statesOf(reply({object, About::states})).value_or(0), ATSPI_STATE_SHOWING);
}

} // namespace lumetry::atspi
