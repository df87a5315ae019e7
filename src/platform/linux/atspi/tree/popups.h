#pragma once

#include "base/int_geometry.h"
#include "base/lifetime.h"
#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/toolkits.h"

#include <functional>
#include <optional>
#include <vector>

namespace lumetry::atspi {

/// Looks for what a popup shows, which some applications do not keep in the popup's own tree: it
/// lies somewhere below what has opened the popup. Goes down level by level, each level in two
/// exchanges.
/// @param starts where to look below, all in one application
/// @param fits says from the place of an object that is on screen, in the application's own units,
/// whether it is the one
/// @return absent when there is none, or not where one can look in time
[[nodiscard]] std::optional<ObjectReference>
firstShowingBelow(Bus& bus, const Toolkits& toolkits, std::vector<ObjectReference> starts,
                  const std::function<bool(const IntRect&)>& fits, Deadline deadline);

/// GTK's popovers are further children of the window's object that lie over its contents. Asked for
/// a point, GTK answers with the first child there, even where a popover covers it.
class Popovers {
public:
    Popovers(Bus& bus, const Toolkits& toolkits) : bus_(bus), toolkits_(toolkits) {}

    /// What covers that child of the window's object at the point; the child itself where nothing
    /// does. Where the children lie is asked only where that is not known from a moment ago: they
    /// are many, and hardly ever shown.
    /// @param at in the application's own units
    [[nodiscard]] ObjectReference covering(const ObjectReference& topLevel,
                                           const ObjectReference& child, IntPoint at,
                                           Deadline deadline);
    /// Asks anew where those of that window lie, if it is the one that is known of and that was
    /// not asked just now. Does not wait.
    void refresh(const ObjectReference& topLevel);

private:
    struct Child {
        ObjectReference object;
        std::optional<IntRect> extents;
    };

    using Children = std::vector<Child>;

    void look(const ObjectReference& topLevel, Deadline deadline);
    void askPlaces(const ObjectReference& topLevel, std::vector<ObjectReference> children);

    Bus& bus_;
    const Toolkits& toolkits_;
    ObjectReference topLevel_;
    Clock::time_point lookedAt_; ///< when the places that are known were asked for
    Clock::time_point askedAt_;  ///< when they were asked for last
    Children children_;
    Lifetime lifetime_;
};

} // namespace lumetry::atspi
