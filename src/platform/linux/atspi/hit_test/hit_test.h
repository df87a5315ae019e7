#pragma once

#include "base/geometry.h"
#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/hit_test/point_queries.h"
#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/popups.h"
#include "platform/linux/atspi/tree/processes.h"
#include "platform/linux/atspi/tree/reply_cache.h"
#include "platform/linux/atspi/tree/text_leaves.h"
#include "platform/linux/atspi/tree/toolkits.h"
#include "platform/linux/atspi/tree/top_levels.h"
#include "platform/linux/windows/desktop_windows.h"

#include <sys/types.h>

#include <optional>
#include <span>
#include <vector>

namespace lumetry::atspi {

/// Finds the innermost object at a point: the window under it, then the object that stands for the
/// window, then down from there.
class HitTest {
public:
    HitTest(DesktopWindows& windows, Bus& bus, ReplyCache& cache, Processes& processes,
            Toolkits& toolkits)
        : windows_(windows), bus_(bus), cache_(cache), toolkits_(toolkits),
          topLevels_(bus, processes, toolkits), popovers_(bus, toolkits),
          textLeaves_(bus, cache, toolkits) {}

    struct Hit {
        ObjectReference object;
        pid_t pid = 0; ///< whose window it is in
        /// What of the object's text is at the point, where that has no object of its own.
        std::optional<TextLeaf> text = std::nullopt;
    };

    /// @param point accessibility space
    /// @param pid only in windows of that process, when given
    [[nodiscard]] std::optional<Hit> objectAt(Point point, std::optional<pid_t> pid,
                                              Deadline deadline);

    /// Asks for what the next hit test is likely to need, without waiting.
    void askAhead() { popovers_.refresh(lastTopLevel_); }

    /// How the places of that object become pixels of the root window.
    [[nodiscard]] Placement placementOf(const ObjectReference& object) const {
        return topLevels_.placementOf(object);
    }
    /// Where a frame is that does not say so itself, in pixels of the root window.
    [[nodiscard]] std::optional<Rect> placeOfFrame(const ObjectReference& object) const {
        return topLevels_.placeOfFrame(object);
    }
    /// The window of the last hit, without its decorations, in pixels of the root window.
    [[nodiscard]] const Rect& lastClient() const { return lastClient_; }
    /// Whether that object stands for the window that was hit last.
    [[nodiscard]] bool isWindow(const ObjectReference& object) const {
        return object == lastTopLevel_;
    }
    [[nodiscard]] std::vector<TextLeaf> textLeavesIn(const ObjectReference& object,
                                                     Deadline deadline) {
        return textLeaves_.in(object, deadline);
    }
    /// @{ What TextLeaves asks of several objects together.
    void addTextLeafQueries(std::span<const ObjectReference> objects,
                            std::vector<Query>& queries) const {
        textLeaves_.addQueries(objects, queries);
    }
    void addTextPlaceQueries(std::span<const ObjectReference> objects, std::vector<Query>& queries,
                             Deadline deadline) {
        textLeaves_.addPlaceQueries(objects, queries, deadline);
    }
    /// @}

private:
    [[nodiscard]] std::optional<ObjectReference> objectIn(const DesktopWindow& window, pid_t pid,
                                                          Point point, Deadline deadline);
    [[nodiscard]] std::optional<ObjectReference> contentOfHollowPopup(pid_t pid, IntPoint at,
                                                                      Deadline deadline);
    void askWhatTellsRole(PointQueries& queries, const ObjectReference& object,
                          const Habits& habits);
    void askAboutLastWay(PointQueries& queries);
    void keepWhatHelps(const PointQueries& queries, const TopLevel& topLevel,
                       const std::optional<ObjectReference>& target);
    [[nodiscard]] ObjectReference textBehind(ObjectReference object, Deadline deadline);

    DesktopWindows& windows_;
    Bus& bus_;
    ReplyCache& cache_;
    Toolkits& toolkits_;
    TopLevels topLevels_;
    Popovers popovers_;
    TextLeaves textLeaves_;
    /// What the last hit test went by, and in which window: the pointer is near there mostly, and
    /// then one exchange serves the whole way down.
    std::vector<Query> lastWay_;
    ObjectReference lastTopLevel_;
    ObjectReference lastTarget_;       ///< where it ended
    std::optional<IntRect> lastPlace_; ///< of that, as the application reports places
    Rect lastClient_;
    std::optional<ObjectReference> lastChild_; ///< what that window answered
};

} // namespace lumetry::atspi
