#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/bus/object_reference.h"
#include "platform/linux/atspi/tree/pixel.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <cstdint>
#include <initializer_list>
#include <map>
#include <span>
#include <tuple>
#include <vector>

namespace lumetry::atspi {

/// All that is asked about one point, nothing twice.
class Inquiry {
public:
    enum class About : std::uint8_t {
        childAtPoint,
        children,
        extents,
        interfaces,
        parent,
        role,
        states,
    };
    struct Query {
        ObjectReference object;
        About about = About::childAtPoint;

        friend bool operator==(const Query&, const Query&) = default;
        friend bool operator<(const Query& a, const Query& b) {
            return std::tie(a.object, a.about) < std::tie(b.object, b.about);
        }
    };

    /// @param at in the coordinates that the toolkit's applications are asked in
    Inquiry(Bus& bus, const HitPoint& at, Toolkit toolkit, Deadline deadline)
        : bus_(bus), at_(at), habits_(habitsOf(toolkit)), deadline_(deadline) {}

    /// To be compared with reported places.
    [[nodiscard]] Pixel at() const { return at_.reported; }
    [[nodiscard]] Deadline deadline() const { return deadline_; }

    /// Asks those that have not been asked yet together.
    void ask(std::span<const Query> queries);
    /// The reply to one, asked now if it has not been.
    [[nodiscard]] const Reply& reply(const Query& query);

    /// The reply if it has been asked; else null.
    [[nodiscard]] const Reply* known(const Query& query) const;

    /// Whether the object reports a place that covers the point.
    [[nodiscard]] bool isAtPoint(const ObjectReference& object);
    [[nodiscard]] bool isShowing(const ObjectReference& object);
    /// Asks together whatever of that has not been asked yet, as what the answer rests on.
    void use(const ObjectReference& object, std::initializer_list<About> about);

    /// A reply that was got in another way, as what the answer rests on.
    void take(const Query& query, Reply reply);

    /// The queries whose replies were used, in the order they were first used.
    [[nodiscard]] const std::vector<Query>& used() const { return used_; }
    /// Keeps there whatever is known of objects by now.
    void tell(ReplyCache& cache) const;

private:
    struct Known {
        Reply reply;
        bool used = false;
    };

    [[nodiscard]] Message request(const Query& query) const;

    Bus& bus_;
    HitPoint at_;
    const Habits& habits_;
    Deadline deadline_;
    std::map<Query, Known> known_;
    std::vector<Query> used_;
};

} // namespace lumetry::atspi
