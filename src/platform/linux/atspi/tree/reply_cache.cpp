#include "platform/linux/atspi/tree/reply_cache.h"

#include "platform/linux/atspi/tree/tables.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace lumetry::atspi {

void ReplyCache::endKeeping() {
    if (--holders_ == 0) {
        replies_.clear();
    }
}

Token ReplyCache::keep() {
    beginKeeping();
    return Token([this] { endKeeping(); });
}

void ReplyCache::ask(std::span<const Query> queries, Deadline deadline) {
    assert(keeps());
    for (auto next = unanswered(queries); !next.empty(); next = unanswered(queries)) {
        exchange(bus_, toolkits_, next, deadline, replies_);
    }
}

void ReplyCache::ask(const ObjectReference& object, std::span<const Question> questions,
                     Deadline deadline) {
    std::vector<Query> queries;
    queries.reserve(questions.size());
    for (const Question question : questions) {
        queries.push_back({object, question});
    }
    ask(queries, deadline);
}

void ReplyCache::askAtOnce(std::span<const Query> queries, Deadline deadline) {
    std::vector<Query> missing;
    std::ranges::copy_if(queries, std::back_inserter(missing),
                         [this](const Query& query) { return !contains(query); });
    if (!missing.empty()) {
        exchange(bus_, toolkits_, missing, deadline, replies_);
    }
}

/// What is to be asked next for those that have no answer yet: they themselves or what has to be
/// known before, each once.
std::vector<Query> ReplyCache::unanswered(std::span<const Query> queries) const {
    std::vector<Query> next;
    for (const Query& query : queries) {
        if (!contains(query) && isUnderstood(query)) {
            next.push_back(neededFor(query).value_or(query));
        }
    }
    std::sort(next.begin(), next.end());
    next.erase(std::unique(next.begin(), next.end()), next.end());
    return next;
}

/// False once it is known that the object does not implement what it takes. The children of tables
/// that are made of cells are too many to be asked for.
bool ReplyCache::isUnderstood(const Query& query) const {
    if (query.question == Question::children) {
        return !isMadeOfCells(*this, query.object, toolkits_.habitsFor(query.object));
    }
    const auto needed = interfaceFor(query.question);
    return !needed || !contains({query.object, Question::interfaces}) ||
           get<Question::interfaces>(query.object).value_or(Interfaces()).contains(*needed);
}

/// What has to be known of the object before it can be asked that.
std::optional<Query> ReplyCache::neededFor(const Query& query) const {
    const Habits& habits = toolkits_.habitsFor(query.object);
    const auto missing = [&](Question question) {
        Query needed{query.object, question};
        return contains(needed) ? std::nullopt : std::optional(std::move(needed));
    };
    switch (query.question) {
    case Question::children: {
        auto interfaces = habits.tablesHoldCells ? missing(Question::interfaces) : std::nullopt;
        return interfaces || !habits.tablesHoldCells ? interfaces : missing(Question::role);
    }
    case Question::extents:
    case Question::objectAtPoint:
        // What is on screen has a place: that is not worth an exchange of its own.
        return std::nullopt;
    case Question::text: {
        auto interfaces = missing(Question::interfaces);
        return interfaces || habits.clipsText ? interfaces : missing(Question::characterCount);
    }
    default:
        return interfaceFor(query.question) ? missing(Question::interfaces) : std::nullopt;
    }
}

} // namespace lumetry::atspi
