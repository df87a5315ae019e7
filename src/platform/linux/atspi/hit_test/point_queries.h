#pragma once

#include "base/int_geometry.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/queries.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <initializer_list>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace lumetry::atspi {

/// A point of one window, in the units of its application.
struct HitPoint {
    IntPoint asked;    ///< as the application takes it in a hit test
    IntPoint reported; ///< as the places that it reports are to be compared with it
};

/// All that is asked about one point on the way down to the object there. Remembers what the way
/// went by, so that the next hit test can ask all of that at once.
class PointQueries {
public:
    /// @param cache keeps replies for as long as this lives
    /// @param habits of the application that is asked
    PointQueries(ReplyCache& cache, const HitPoint& at, const Habits& habits, Deadline deadline)
        : cache_(cache), at_(at), habits_(habits), deadline_(deadline) {}

    /// To be compared with reported places.
    [[nodiscard]] IntPoint at() const { return at_.reported; }
    [[nodiscard]] Deadline deadline() const { return deadline_; }
    /// For the child of the object at the point.
    [[nodiscard]] Query childAtPointQuery(const ObjectReference& object) const {
        return {object, Question::objectAtPoint, at_.asked.x, at_.asked.y};
    }

    /// Asks those together that have not been asked yet.
    void ask(std::span<const Query> queries) { cache_.askAtOnce(queries, deadline_); }
    /// The same for what another point's way went by.
    void askAgain(std::vector<Query> way);
    [[nodiscard]] bool isKnown(const Query& query) const { return cache_.contains(query); }

    /// @{ What an object says, asked now if it has not been. The way goes by it.
    template<Question question>
    [[nodiscard]] auto get(const ObjectReference& object) {
        use({object, question});
        return cache_.get<question>(object);
    }
    [[nodiscard]] std::optional<ObjectReference> childAtPoint(const ObjectReference& object) {
        const Query query = childAtPointQuery(object);
        use(query);
        return cache_.get<Question::objectAtPoint>(object, query.first, query.second);
    }
    [[nodiscard]] Outcome outcome(const Query& query);
    /// Whether the object reports a place that covers the point.
    [[nodiscard]] bool isAtPoint(const ObjectReference& object);
    [[nodiscard]] bool isShowing(const ObjectReference& object);
    /// @}
    /// Asks together whatever of that has not been asked yet; the way goes by it.
    void use(const ObjectReference& object, std::initializer_list<Question> questions);
    void use(const Query& query);
    /// The way goes by this, too.
    void note(const Query& query);

    /// What the way went by, in that order.
    [[nodiscard]] const std::vector<Query>& way() const { return way_; }

private:
    ReplyCache& cache_;
    HitPoint at_;
    const Habits& habits_;
    Deadline deadline_;
    std::vector<Query> way_;
    std::set<Query> noted_; ///< the same, to be searched
};

} // namespace lumetry::atspi
