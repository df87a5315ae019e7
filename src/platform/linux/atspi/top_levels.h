#pragma once

#include "base/geometry.h"
#include "platform/linux/atspi/atspi_bus.h"
#include "platform/linux/atspi/deadline.h"
#include "platform/linux/atspi/object_reference.h"
#include "platform/linux/atspi/processes.h"
#include "platform/linux/desktop_windows.h"

#include <sys/types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::atspi {

/// What an application is built with, as far as its answers differ.
enum class Toolkit : std::uint8_t { gtk, chromium, gecko, qt, other };

/// The accessible object that stands for a window.
struct TopLevel {
    ObjectReference object;
    Toolkit toolkit = Toolkit::other;
};

/// Finds the accessible objects of windows, and remembers them.
class TopLevels {
public:
    TopLevels(AtspiBus& bus, Processes& processes) : bus_(bus), processes_(processes) {}

    /// Absent when the window has none. Asks nothing when the window is known.
    /// @param bounds the window's, in pixels of the root window
    [[nodiscard]] std::optional<TopLevel> of(const DesktopWindow& window, const Rect& bounds,
                                             pid_t pid, Deadline deadline);
    /// What was remembered of the window is of no use any more.
    void forget(std::uint32_t window) { known_.erase(window); }
    /// Where the pointer was last in that process's windows that are no popups: what has opened a
    /// popup, most likely.
    void noteHit(pid_t pid, const ObjectReference& object) { lastHits_[pid] = object; }
    [[nodiscard]] std::optional<ObjectReference> lastHit(pid_t pid) const;
    /// How many pixels of the root window the unit has in which the place of that object is
    /// reported, as far as its application's windows have shown that.
    [[nodiscard]] double scaleOf(const ObjectReference& object) const;
    /// What the object's application is built with, once one of its windows has been looked for.
    [[nodiscard]] Toolkit toolkitOf(const ObjectReference& object) const;

private:
    struct Candidate {
        TopLevel topLevel;
        bool showing = false;
        bool active = false;
        double likeness = 0; ///< of its place to the window's, 0 to 1
        double scale = 1;
    };
    struct Known {
        std::optional<TopLevel> topLevel;
        int searches = 0; ///< in vain
    };

    [[nodiscard]] std::vector<TopLevel> topLevelsOf(pid_t pid, Deadline deadline);
    [[nodiscard]] std::vector<Candidate> rate(const std::vector<TopLevel>& topLevels,
                                              const Rect& bounds, Deadline deadline);
    [[nodiscard]] std::optional<TopLevel> searchPopup(const std::vector<TopLevel>& topLevels,
                                                      const Rect& bounds, pid_t pid,
                                                      Deadline deadline);
    Known& entry(std::uint32_t window);
    void learnScale(const Candidate& candidate);

    AtspiBus& bus_;
    Processes& processes_;
    std::uint64_t generation_ = 0;
    std::map<std::uint32_t, Known> known_; ///< by window
    std::map<pid_t, ObjectReference> lastHits_;
    std::map<std::string, double> scales_;    ///< by the application's name
    std::map<std::string, Toolkit> toolkits_; ///< by the application's name
    /// Of windows that are measured in other units than what they show.
    std::map<ObjectReference, double> windowScales_;
};

} // namespace lumetry::atspi
