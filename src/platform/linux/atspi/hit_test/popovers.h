#pragma once

#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/object_reference.h"
#include "platform/linux/atspi/bus/requests.h"
#include "platform/linux/atspi/tree/inquiry.h"

#include <optional>
#include <vector>

namespace lumetry::atspi {

/// GTK's popovers are further children of the window's object that lie over its contents. Asked for
/// a point, GTK answers with the first child there, even where a popover covers it.
class Popovers {
public:
    explicit Popovers(Bus& bus) : bus_(bus) {}

    /// What covers that child of the window's object at the point; the child itself where nothing
    /// does. Where the children lie is asked now and then only: they are many, and hardly ever
    /// shown.
    [[nodiscard]] ObjectReference covering(const ObjectReference& topLevel,
                                           const ObjectReference& child, Pixel at,
                                           Deadline deadline);

private:
    struct Child {
        ObjectReference object;
        std::optional<Extents> extents;
    };

    void look(const ObjectReference& topLevel, Deadline deadline);

    Bus& bus_;
    ObjectReference topLevel_;
    Clock::time_point lookedAt_;
    std::vector<Child> children_;
};

} // namespace lumetry::atspi
