#include "platform/linux/atspi/answers.h"

#include "platform/linux/atspi/requests.h"

#include <cstddef>
#include <utility>

namespace lumetry::atspi {
namespace {

Message requestFor(const Asked& asked) {
    switch (asked.question) {
    case Question::role:
        return getRole(asked.object);
    case Question::name:
        return getName(asked.object);
    case Question::text:
        return getText(asked.object, 0, textBeginningCharacters);
    case Question::wholeText:
        return getText(asked.object, 0, -1);
    case Question::value:
        return getCurrentValue(asked.object);
    case Question::characterCount:
        return getCharacterCount(asked.object);
    case Question::parent:
        return getParent(asked.object);
    case Question::children:
        return getChildren(asked.object);
    case Question::extents:
        return getExtents(asked.object);
    case Question::states:
        return getState(asked.object);
    case Question::textPlace:
        return getRangeExtents(asked.object, asked.start, asked.end);
    case Question::textPart:
        return getText(asked.object, asked.start, asked.end);
    }
    return nullptr;
}

} // namespace

bool Answers::keep() {
    return !std::exchange(keeps_, true);
}

void Answers::forget() {
    keeps_ = false;
    kept_.clear();
}

std::vector<Reply> Answers::ask(std::span<const Asked> questions, Deadline deadline) {
    std::map<Asked, std::size_t> requested; ///< to the request's place
    std::vector<Message> requests;
    for (const Asked& question : questions) {
        if (!kept_.contains(question) && requested.emplace(question, requests.size()).second) {
            requests.push_back(requestFor(question));
        }
    }
    const auto arrived =
        requests.empty() ? std::vector<Reply>() : bus_.exchange(std::move(requests), deadline);
    std::vector<Reply> replies;
    replies.reserve(questions.size());
    for (const Asked& question : questions) {
        const auto place = requested.find(question);
        replies.push_back(place == requested.end() ? kept_.at(question) : arrived[place->second]);
    }
    for (const auto& [question, place] : requested) {
        remember(question, arrived[place]);
    }
    return replies;
}

Reply Answers::ask(const Asked& question, Deadline deadline) {
    return std::move(ask(std::span(&question, 1), deadline).front());
}

void Answers::remember(const Asked& question, const Reply& reply) {
    if (keeps_) {
        kept_.insert_or_assign(question, reply);
    }
}

} // namespace lumetry::atspi
