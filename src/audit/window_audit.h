#pragma once

#include "audit/component.h"
#include "base/bitmap.h"
#include "base/geometry.h"
#include "platform/platform.h"
#include "probe/hit_test.h"
#include "probe/probe_state.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

/// The elements that were not measured. What lies inside of one of which nothing shows is not
/// counted.
struct LeftOut {
    std::size_t hidden = 0;
    std::size_t clipped = 0; ///< scrolled or clipped away, or in part
    std::size_t covered = 0; ///< by other windows or by other elements, or in part
    std::size_t offScreen = 0;
    std::size_t beyondLimit = 0;
};

/// A window of another application.
struct AuditTarget {
    WindowHit window;
    std::uint32_t number = 0; ///< WindowInfo::number
};

/// Everything that shows in a window, measured.
struct WindowAudit {
    std::string app; ///< bundle identifier
    std::string title;
    Rect window;                       ///< accessibility space
    double scale = 1;                  ///< device pixels for each point
    std::vector<Component> components; ///< what is drawn last comes first
    std::size_t elements = 0;          ///< that show, whether they are components or parts of some
    LeftOut leftOut;
    bool cutOff = false; ///< it has so many elements that not all of them were looked at
    std::size_t unknownTextColors =
        0;          ///< texts of which the colour, or what they are on, is not known
    Bitmap picture; ///< of the window
};

/// Why a window could not be audited.
enum class AuditFailure : std::uint8_t {
    none,
    noTree,     ///< its application tells nothing of its elements
    noAnswer,   ///< its application does not answer any more
    ended,      ///< its application or the window is gone
    changed,    ///< windows or screens were moved again and again meanwhile
    nothing,    ///< no element of it shows
    unfinished, ///< its page is still loading, or empty
    noPicture,  ///< the screen may not be read
    cancelled,  ///< as AuditOptions wanted
};

struct AuditOptions {
    std::size_t limit = 5000; ///< of the components that are measured
    /// Called now and then with how many elements are done, and how many are known so far.
    std::function<void(std::size_t done, std::size_t known)> progress = {};
    /// Whether to stop; asked as often.
    std::function<bool()> cancelled = {};
};

/// Measures every component of a window that shows, once. The screen is captured once. Of a web
/// browser, and of what bundles one, only the page is measured.
/// @param failure then why there is no audit
[[nodiscard]] std::optional<WindowAudit> auditWindow(const Platform& platform, ProbeState& state,
                                                     const AuditTarget& target,
                                                     const AuditOptions& options,
                                                     AuditFailure& failure);

/// What the window's elements are and where they lie, as one number, to see whether they have
/// settled. Absent while its application tells of nothing but the window, and while a page is still
/// loading.
[[nodiscard]] std::optional<std::size_t> treeFingerprint(const Platform& platform,
                                                         ProbeState& state,
                                                         const AuditTarget& target,
                                                         std::size_t most);
} // namespace lumetry
