#pragma once

#include "platform/linux/atspi/atspi_bus.h"
#include "platform/linux/atspi/deadline.h"
#include "platform/linux/atspi/message.h"
#include "platform/linux/atspi/object_reference.h"

#include <cstdint>
#include <map>
#include <span>
#include <tuple>
#include <vector>

namespace lumetry::atspi {

/// A point in the units in which an application reports places.
struct Pixel {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// All that is asked about one point, nothing twice.
class Inquiry {
public:
    enum class About : std::uint8_t {
        childAtPoint,
        children,
        extents,
        parent,
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

    Inquiry(AtspiBus& bus, Pixel at, Deadline deadline) : bus_(bus), at_(at), deadline_(deadline) {}

    [[nodiscard]] Pixel at() const { return at_; }
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

    /// The queries whose replies were used, in the order they were first used.
    [[nodiscard]] const std::vector<Query>& used() const { return used_; }

private:
    AtspiBus& bus_;
    Pixel at_;
    Deadline deadline_;
    struct Asked {
        Reply reply;
        bool used = false;
    };

    std::map<Query, Asked> asked_;
    std::vector<Query> used_;
};

} // namespace lumetry::atspi
