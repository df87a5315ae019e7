#pragma once

#include "base/geometry.h"
#include "platform/linux/atspi/bus/bus.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/atspi/tree/placement.h"
#include "platform/linux/atspi/tree/processes.h"
#include "platform/linux/atspi/tree/toolkits.h"
#include "platform/linux/windows/desktop_windows.h"

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::atspi {

/// The accessible object that stands for a window.
struct TopLevel {
    ObjectReference object;
    Toolkit toolkit = Toolkit::other;
};

/// Finds the accessible objects of windows, and remembers them.
class TopLevels {
public:
    TopLevels(Bus& bus, Processes& processes, Toolkits& toolkits)
        : bus_(bus), processes_(processes), toolkits_(toolkits) {}

    /// Absent when the window has none. Asks nothing when the window is known. Where the window
    /// shows something at the point that counts from elsewhere than the window does, that.
    /// @param window its places in pixels of the root window
    /// @param at likewise
    [[nodiscard]] std::optional<TopLevel> at(Point at, const DesktopWindow& window, pid_t pid,
                                             Deadline deadline);
    /// What was remembered of the window is of no use any more.
    void forget(std::uint32_t window) { known_.erase(window); }
    /// Where the pointer was last in that process's windows that are no popups: what has opened a
    /// popup, most likely.
    void noteHit(pid_t pid, const ObjectReference& object) { lastHits_[pid] = object; }
    [[nodiscard]] std::optional<ObjectReference> lastHit(pid_t pid) const;
    /// How the places of that object become pixels of the root window, as far as its application's
    /// windows have shown that; in one that counts from its windows, those of the window that was
    /// looked for last.
    [[nodiscard]] Placement placementOf(const ObjectReference& object) const;
    /// Where the window of a frame that does not say so was last, in pixels of the root window.
    /// Absent for all other objects.
    [[nodiscard]] std::optional<Rect> placeOfFrame(const ObjectReference& object) const;

private:
    struct Candidate {
        TopLevel topLevel;
        bool showing = false;
        bool active = false;
        Rect place;         ///< pixels of the root window
        double overlap = 0; ///< of its place to the window's, 0 to 1
        Placement placement;
    };
    /// What counts from the top of its window although it lies below a menu bar.
    struct Embedded {
        ObjectReference object;
        Rect area; ///< from the window's own origin
        Placement placement;
    };
    struct Known {
        std::optional<TopLevel> topLevel;
        int searches = 0; ///< in vain
        /// Of one that counts from its window, as from the window's own origin.
        std::optional<Placement> insideWindow = std::nullopt;
        std::optional<Embedded> embedded = std::nullopt;
        bool embeddedIsKnown = false;
    };

    [[nodiscard]] std::optional<TopLevel> find(const DesktopWindow& window, pid_t pid,
                                               Deadline deadline);
    [[nodiscard]] std::vector<TopLevel> topLevelsOf(pid_t pid, Deadline deadline);
    [[nodiscard]] std::vector<Candidate> rate(const std::vector<TopLevel>& topLevels,
                                              const DesktopWindow& window, Deadline deadline);
    [[nodiscard]] bool countsFromWindow(Toolkit toolkit) const;
    [[nodiscard]] Placement placementFrom(const IntRect& reported, const TopLevel& topLevel,
                                          const DesktopWindow& window) const;
    [[nodiscard]] std::map<ObjectReference, IntRect>
    contentsOf(const std::vector<TopLevel>& topLevels, Deadline deadline);
    [[nodiscard]] std::vector<Placement> placementsInPopup(const IntRect& reported,
                                                           const TopLevel& topLevel,
                                                           const DesktopWindow& window) const;
    [[nodiscard]] std::optional<TopLevel> searchPopup(const std::vector<TopLevel>& topLevels,
                                                      const DesktopWindow& window, pid_t pid,
                                                      Deadline deadline);
    [[nodiscard]] std::optional<Embedded>
    embeddedIn(const TopLevel& topLevel, const DesktopWindow& window, Deadline deadline);
    Known& entry(std::uint32_t window);
    void learnPlacement(const Candidate& candidate);

    Bus& bus_;
    Processes& processes_;
    Toolkits& toolkits_;
    std::uint64_t generation_ = 0;
    std::map<std::uint32_t, Known> known_; ///< by window
    std::map<pid_t, ObjectReference> lastHits_;
    std::map<std::string, Placement> placements_; ///< by the application's name
    /// Of windows that are measured in other units than what they show.
    std::map<ObjectReference, double> windowScales_;
    std::map<ObjectReference, Rect> framePlaces_;
};

} // namespace lumetry::atspi
