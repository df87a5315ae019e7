#include "platform/linux/atspi/tree/reply_cache.h"

#include "platform/linux/atspi/bus/requests.h"
#include "platform/linux/atspi/tree/tables.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>

namespace lumetry::atspi {

bool ReplyCache::keep() {
    return !std::exchange(keeps_, true);
}

void ReplyCache::forget() {
    keeps_ = false;
    kept_.clear();
}

std::vector<Reply> ReplyCache::ask(std::span<const Asked> questions, Deadline deadline) {
    Replies passing;
    Replies& known = keeps_ ? kept_ : passing;
    for (auto next = unanswered(known, questions); !next.empty();
         next = unanswered(known, questions)) {
        std::vector<Message> requests;
        requests.reserve(next.size());
        for (const Asked& question : next) {
            requests.push_back(request(known, question));
        }
        auto replies = bus_.exchange(std::move(requests), deadline);
        for (std::size_t index = 0; index < next.size(); ++index) {
            known.insert_or_assign(std::move(next[index]), std::move(replies[index]));
        }
    }
    std::vector<Reply> replies;
    replies.reserve(questions.size());
    for (const Asked& question : questions) {
        replies.push_back(isUnderstood(known, question) ? known.at(question)
                                                        : Reply{Outcome::refused, nullptr});
    }
    return replies;
}

/// What is to be asked next for those that have no answer yet: they themselves or what has to be
/// known before, each once.
std::vector<Asked> ReplyCache::unanswered(const Replies& known,
                                          std::span<const Asked> questions) const {
    std::set<Asked> next;
    for (const Asked& question : questions) {
        if (!known.contains(question) && isUnderstood(known, question)) {
            next.insert(neededFor(known, question).value_or(question));
        }
    }
    return {next.begin(), next.end()};
}

/// False once it is known that the object does not implement what it takes. The children of tables
/// that are made of cells are too many to be asked for.
bool ReplyCache::isUnderstood(const Replies& known, const Asked& question) const {
    if (question.question == Question::children) {
        const auto told = [&](Question fact) {
            const auto reply = known.find({question.object, fact});
            return reply == known.end() ? Reply() : reply->second;
        };
        return !isMadeOfCells(told(Question::role), told(Question::interfaces),
                              toolkits_.habitsFor(question.object));
    }
    const auto interface = interfaceFor(question.question);
    const auto reply = known.find({question.object, Question::interfaces});
    return !interface || reply == known.end() ||
           interfacesOf(reply->second).value_or(Interfaces()).contains(*interface);
}

/// What has to be known of the object before it can be asked that.
std::optional<Asked> ReplyCache::neededFor(const Replies& known, const Asked& question) const {
    const Asked interfaces{question.object, Question::interfaces};
    if (question.question == Question::children &&
        toolkits_.habitsFor(question.object).tablesHoldCells) {
        const Asked role{question.object, Question::role};
        return !known.contains(interfaces) ? std::optional(interfaces)
               : !known.contains(role)     ? std::optional(role)
                                           : std::nullopt;
    }
    // What is on screen has a place: that is not worth an exchange of its own.
    const bool depends = interfaceFor(question.question) && question.question != Question::extents;
    if (depends && !known.contains(interfaces)) {
        return interfaces;
    }
    const Asked count{question.object, Question::characterCount};
    if (question.question == Question::text && !toolkits_.habitsFor(question.object).clipsText &&
        !known.contains(count)) {
        return count;
    }
    return std::nullopt;
}

Message ReplyCache::request(const Replies& known, const Asked& question) const {
    const auto& habits = toolkits_.habitsFor(question.object);
    if (question.question != Question::text || habits.clipsText) {
        return requestFor(question, habits.coordinates);
    }
    const auto count = integerOf(known.at({question.object, Question::characterCount}));
    const auto end = std::clamp<std::int64_t>(count.value_or(0), 0, textBeginningCharacters);
    return getText(question.object, 0, static_cast<std::int32_t>(end));
}

Reply ReplyCache::ask(const Asked& question, Deadline deadline) {
    return std::move(ask(std::span(&question, 1), deadline).front());
}

void ReplyCache::remember(const Asked& question, const Reply& reply) {
    if (keeps_) {
        kept_.insert_or_assign(question, reply);
    }
}

} // namespace lumetry::atspi
