#pragma once

#include "base/token.h"
#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/tree/queries.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace lumetry::atspi {

/// Puts questions to objects, and none twice while replies are kept.
class ReplyCache {
public:
    ReplyCache(Bus& bus, const Toolkits& toolkits) : bus_(bus), toolkits_(toolkits) {}
    ReplyCache(const ReplyCache&) = delete;
    ReplyCache& operator=(const ReplyCache&) = delete;
    ~ReplyCache() = default;

    /// @{ Keeps replies until as many ends as beginnings have come. Nothing is to be asked before.
    void beginKeeping() { ++holders_; }
    void endKeeping();
    /// @}
    /// The same until the token is gone, which the cache outlives.
    [[nodiscard]] Token keep();
    [[nodiscard]] bool keeps() const { return holders_ > 0; }

    /// Asks those together that have no reply yet. Nobody is asked for what is not theirs to
    /// answer: what an object implements is asked first where that is not known yet, and the end of
    /// its text where it is to stay within that. What an object does not understand stays without a
    /// reply. Takes one exchange at most, and one or two more before it where something has to be
    /// known first.
    void ask(std::span<const Query> queries, Deadline deadline);
    void ask(std::initializer_list<Query> queries, Deadline deadline) {
        ask(std::span(queries.begin(), queries.size()), deadline);
    }
    void ask(const ObjectReference& object, std::span<const Question> questions, Deadline deadline);
    /// Asks those together that have no reply yet, of objects that understand them for sure.
    void askAtOnce(std::span<const Query> queries, Deadline deadline);

    [[nodiscard]] bool contains(const Query& query) const { return replies_.contains(query); }
    [[nodiscard]] Outcome outcome(const Query& query) const { return replies_.outcome(query); }
    /// What the object has said; absent where it said nothing, or has not been asked.
    template<Question question>
    [[nodiscard]] auto get(const ObjectReference& object, std::int32_t first = 0,
                           std::int32_t second = 0) const {
        return replies_.get<question>(object, first, second);
    }
    /// The same, asked if need be.
    template<Question question>
    [[nodiscard]] auto ask(const ObjectReference& object, Deadline deadline, std::int32_t first = 0,
                           std::int32_t second = 0) {
        ask({{object, question, first, second}}, deadline);
        return get<question>(object, first, second);
    }

    /// Whatever objects of that application have said.
    void forget(const std::string& application) { replies_.erase(application); }

private:
    [[nodiscard]] std::vector<Query> unanswered(std::span<const Query> queries) const;
    [[nodiscard]] bool isUnderstood(const Query& query) const;
    [[nodiscard]] std::optional<Query> neededFor(const Query& query) const;

    Bus& bus_;
    const Toolkits& toolkits_;
    int holders_ = 0;
    Replies replies_;
};

} // namespace lumetry::atspi
