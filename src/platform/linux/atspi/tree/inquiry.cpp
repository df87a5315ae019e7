#include "platform/linux/atspi/tree/inquiry.h"

#include "platform/linux/atspi/bus/requests.h"
#include "platform/linux/atspi/tree/states.h"

#include <cstddef>
#include <utility>

namespace lumetry::atspi {
namespace {

Question questionOf(Inquiry::About about) {
    switch (about) {
    case Inquiry::About::children:
        return Question::children;
    case Inquiry::About::extents:
        return Question::extents;
    case Inquiry::About::interfaces:
        return Question::interfaces;
    case Inquiry::About::parent:
        return Question::parent;
    case Inquiry::About::role:
        return Question::role;
    case Inquiry::About::childAtPoint: // of no object alone
    case Inquiry::About::states:
        break;
    }
    return Question::states;
}

} // namespace

Message Inquiry::request(const Query& query) const {
    return query.about == About::childAtPoint
               ? getAccessibleAtPoint(query.object, at_.asked.x, at_.asked.y, habits_.coordinates)
               : requestFor({query.object, questionOf(query.about)}, habits_.coordinates);
}

void Inquiry::ask(std::span<const Query> queries) {
    std::vector<Query> missing;
    std::vector<Message> requests;
    for (const Query& query : queries) {
        if (!known_.contains(query)) {
            missing.push_back(query);
            requests.push_back(request(query));
        }
    }
    if (requests.empty()) {
        return;
    }
    auto replies = bus_.exchange(std::move(requests), deadline_);
    for (std::size_t index = 0; index < missing.size(); ++index) {
        known_.insert_or_assign(std::move(missing[index]), Known{std::move(replies[index]), false});
    }
}

const Reply& Inquiry::reply(const Query& query) {
    ask(std::span(&query, 1));
    Known& known = known_.at(query);
    if (!std::exchange(known.used, true)) {
        used_.push_back(query);
    }
    return known.reply;
}

const Reply* Inquiry::known(const Query& query) const {
    const auto known = known_.find(query);
    return known == known_.end() ? nullptr : &known->second.reply;
}

bool Inquiry::isAtPoint(const ObjectReference& object) {
    const auto extents = extentsOf(reply({object, About::extents}));
    return extents && extents->contains(at_.reported.x, at_.reported.y);
}

bool Inquiry::isShowing(const ObjectReference& object) {
    return hasState(statesOf(reply({object, About::states})).value_or(0), habits_.shown);
}

void Inquiry::use(const ObjectReference& object, std::initializer_list<About> about) {
    std::vector<Query> queries;
    for (const About each : about) {
        queries.push_back({object, each});
    }
    ask(queries);
    for (const Query& query : queries) {
        static_cast<void>(reply(query));
    }
}

void Inquiry::take(const Query& query, Reply reply) {
    known_.insert_or_assign(query, Known{std::move(reply), true});
    used_.push_back(query);
}

void Inquiry::tell(ReplyCache& cache) const {
    for (const auto& [query, known] : known_) {
        if (query.about != About::childAtPoint) {
            cache.remember({query.object, questionOf(query.about)}, known.reply);
        }
    }
}

} // namespace lumetry::atspi
