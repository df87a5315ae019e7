#include "audit/window_audit.h"

#include "audit/component_choice.h"
#include "audit/component_reader.h"
#include "audit/element_tree.h"
#include "audit/visibility.h"
#include "platform/accessibility.h"
#include "platform/applications.h"
#include "platform/picture_capture.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <span>
#include <utility>

namespace lumetry {
namespace {

constexpr std::uint32_t noWindow = 0;
constexpr std::size_t batchSize = 32; ///< components that are asked together

/// What lies over a window, and where it lies itself.
struct Surroundings {
    Rect window;
    std::vector<Rect> above;
    std::vector<Rect> screens; ///< accessibility space

    friend bool operator==(const Surroundings&, const Surroundings&) = default;
};

/// Absent when the window is no longer on the screen.
std::optional<Surroundings> surroundingsOf(WindowServer& windowServer, const AuditTarget& target) {
    Surroundings surroundings;
    const double height = primaryDisplayHeight(windowServer);
    for (const Screen& screen : windowServer.screens()) {
        surroundings.screens.push_back(flipped(screen.frame, height));
    }
    const auto windows = windowServer.onScreenWindows();
    if (!windows) {
        return std::nullopt;
    }
    for (const WindowInfo& window : *windows) {
        if (window.number == target.number && window.bounds) {
            surroundings.window = *window.bounds;
            return surroundings;
        }
        if (window.bounds && window.alpha.value_or(1) > 0) {
            surroundings.above.push_back(*window.bounds);
        }
    }
    return std::nullopt;
}

/// Paths that several have get a number each, in the order from the top of the window down.
void numberPaths(std::vector<Component>& components) {
    std::map<std::string, std::vector<Component*>> byPath;
    for (Component& component : components) {
        byPath[component.path].push_back(&component);
    }
    for (auto& [path, alike] : byPath) {
        if (alike.size() < 2) {
            continue;
        }
        std::ranges::stable_sort(alike, [](const Component* a, const Component* b) {
            return std::pair(a->frame.y, a->frame.x) < std::pair(b->frame.y, b->frame.x);
        });
        for (std::size_t place = 0; place < alike.size(); ++place) {
            alike[place]->path += " #" + std::to_string(place + 1);
        }
    }
}

/// The window or, where an application has none as such, what its elements are in.
AXUIElement outermost(AXUIElement element) {
    constexpr int deepest = 1000;
    for (int level = 0; level < deepest; ++level) {
        const std::string role = axString(element, "AXRole").value_or("");
        if (role == "AXWindow" || role == "AXSheet" || role == "AXDrawer") {
            break;
        }
        auto parent = axParent(element);
        if (!parent || axString(*parent, "AXRole") == "AXApplication") {
            break;
        }
        element = std::move(*parent);
    }
    return element;
}

/// Whether that may be the window's own frame, with or without decorations or a shadow.
bool mayBeFrameOf(const std::optional<Rect>& frame, const Rect& window) {
    constexpr double widestMargin = 64;
    return !frame || (std::abs(frame->minX() - window.minX()) <= widestMargin &&
                      std::abs(frame->minY() - window.minY()) <= widestMargin &&
                      std::abs(frame->maxX() - window.maxX()) <= widestMargin &&
                      std::abs(frame->maxY() - window.maxY()) <= widestMargin);
}

/// The element that stands for the window; absent when its application tells of none.
std::optional<AXUIElement> windowElement(const Platform& platform, ProbeState& state, pid_t pid,
                                         const Surroundings& surroundings) {
    constexpr std::array<double, 5> shares = {0.5, 0.25, 0.75, 0.1, 0.9};
    const std::size_t unanswered = platform.accessibility.unanswered();
    const WindowHit window = {pid, surroundings.window};
    for (const double down : shares) {
        for (const double right : shares) {
            const Point at = {window.bounds.x + right * window.bounds.width,
                              window.bounds.y + down * window.bounds.height};
            // A dialog over it may be the same application's.
            if (std::ranges::any_of(surroundings.above,
                                    [&](const Rect& other) { return other.contains(at); })) {
                continue;
            }
            if (platform.accessibility.unanswered() != unanswered) {
                return std::nullopt; // nor would it answer at the other points
            }
            if (auto hit = axElementAt(platform, state, at, window)) {
                AXUIElement element = outermost(std::move(*hit));
                if (mayBeFrameOf(axFrame(element), window.bounds)) {
                    return element;
                }
            }
        }
    }
    return std::nullopt;
}

/// Whether a page is all that is of interest in the windows of an application.
bool showsPages(const Platform& platform, ProbeState& state, pid_t pid) {
    return isBrowser(platform, pid) || isElectronApp(platform, state, pid);
}

/// What the screen shows of an area; empty where it may not be read.
Bitmap pictureOf(const Platform& platform, const Rect& area) {
    auto picture = platform.windowServer.preflightScreenCaptureAccess()
                       ? platform.screenCapture.captureBelow(area, noWindow)
                       : std::nullopt;
    return picture ? std::move(*picture) : Bitmap();
}

/// One audit of a window.
class Attempt {
public:
    Attempt(const Platform& platform, ProbeState& state, const AuditTarget& target)
        : platform_(platform), state_(state), target_(target),
          unanswered_(platform.accessibility.unanswered()),
          surroundings_(surroundingsOf(platform.windowServer, target)) {}

    [[nodiscard]] AuditFailure run(const AuditOptions& options, WindowAudit& audit) {
        if (!surroundings_) {
            return AuditFailure::ended;
        }
        const Token kept = platform_.accessibility.keepReplies();
        const auto root = windowElement(platform_, state_, target_.window.pid, *surroundings_);
        if (!root) {
            return missing(AuditFailure::noTree);
        }
        describe(audit);
        const Visibility visibility = visibilityOf(*surroundings_);
        ElementTree tree(platform_, visibility);
        audit.cutOff = read(tree, *root, options) == TreeReading::cutOff;
        if (!isAnswering()) {
            return missing(AuditFailure::noAnswer);
        }
        PictureCapture picture(pictureOf(platform_, audit.window), audit.scale,
                               audit.window.origin());
        if (picture.picture().pixels.empty()) {
            return AuditFailure::noPicture;
        }
        if (const auto failure = measure(tree, picture, options, audit);
            failure != AuditFailure::none) {
            return failure;
        }
        audit.picture = picture.takePicture();
        return conclude(tree, audit);
    }

    /// Whether nothing but the window is known yet, or its contents are still loading.
    [[nodiscard]] std::optional<std::size_t> fingerprint(std::size_t most) {
        if (!surroundings_) {
            return std::nullopt;
        }
        const Token kept = platform_.accessibility.keepReplies();
        const auto root = windowElement(platform_, state_, target_.window.pid, *surroundings_);
        if (!root) {
            return std::nullopt;
        }
        const Visibility visibility = visibilityOf(*surroundings_);
        ElementTree tree(platform_, visibility);
        static_cast<void>(tree.read(*root, most, {}));
        return isAnswering() && !isUnfinished(tree) ? std::optional(tree.fingerprint())
                                                    : std::nullopt;
    }

private:
    [[nodiscard]] static Visibility visibilityOf(const Surroundings& surroundings) {
        return {surroundings.window, surroundings.above, surroundings.screens};
    }

    [[nodiscard]] bool isAnswering() const {
        return platform_.accessibility.unanswered() == unanswered_;
    }

    /// Why something is not there.
    [[nodiscard]] AuditFailure missing(AuditFailure usual) const {
        if (!platform_.applications.runningApplication(target_.window.pid)) {
            return AuditFailure::ended;
        }
        return isAnswering() ? usual : AuditFailure::noAnswer;
    }

    void describe(WindowAudit& audit) const {
        audit.app = bundleID(platform_.applications, target_.window.pid);
        audit.title = platform_.windowServer.windowName(target_.number).value_or("");
        audit.window = surroundings_->window;
        const auto screens = platform_.windowServer.screens();
        audit.scale = screens.empty() ? 1 : screens.front().backingScaleFactor;
    }

    [[nodiscard]] static TreeReading read(ElementTree& tree, const AXUIElement& root,
                                          const AuditOptions& options) {
        // What is not measured is mostly part of what is.
        constexpr std::size_t elementsPerComponent = 8;
        return tree.read(root, options.limit * elementsPerComponent, [&](std::size_t elements) {
            if (options.progress) {
                options.progress(0, elements);
            }
        });
    }

    [[nodiscard]] AuditFailure measure(const ElementTree& tree, PictureCapture& picture,
                                       const AuditOptions& options, WindowAudit& audit) {
        const pid_t pid = target_.window.pid;
        const auto choices =
            ComponentChooser(tree, showsPages(platform_, state_, pid)).choose(audit, options.limit);
        ComponentReader reader(platform_, state_, {pid, audit.window}, tree, picture);
        for (std::size_t begin = 0; begin < choices.size(); begin += batchSize) {
            const std::size_t end = std::min(choices.size(), begin + batchSize);
            reader.read(std::span(choices).subspan(begin, end - begin), audit);
            if (!isAnswering()) {
                return missing(AuditFailure::noAnswer);
            }
            if (options.progress) {
                options.progress(end, choices.size());
            }
            if (options.cancelled && options.cancelled()) {
                return AuditFailure::cancelled;
            }
        }
        numberPaths(audit.components);
        return AuditFailure::none;
    }

    [[nodiscard]] AuditFailure conclude(const ElementTree& tree, const WindowAudit& audit) const {
        const auto after = surroundingsOf(platform_.windowServer, target_);
        if (!after || !platform_.applications.runningApplication(target_.window.pid)) {
            return AuditFailure::ended;
        }
        if (!isAnswering()) {
            return AuditFailure::noAnswer;
        }
        if (after != surroundings_) {
            return AuditFailure::changed;
        }
        if (tree.nodes().size() == 1) {
            return AuditFailure::noTree;
        }
        if (isUnfinished(tree)) {
            return AuditFailure::unfinished;
        }
        const bool sawNothing = std::ranges::all_of(
            audit.components, [](const Component& one) { return one.bucket == Bucket::container; });
        return sawNothing ? AuditFailure::nothing : AuditFailure::none;
    }

    /// A page that is still loading says so, or has nothing in it yet.
    [[nodiscard]] bool isUnfinished(const ElementTree& tree) const {
        if (tree.nodes().size() < 2 || tree.isBusy()) {
            return true;
        }
        const bool hasPage = std::ranges::any_of(tree.nodes(), [](const ElementNode& node) {
            return node.role == "AXWebArea" && !isGone(node.presence) && !node.children.empty();
        });
        return !hasPage && showsPages(platform_, state_, target_.window.pid);
    }

    const Platform& platform_;
    ProbeState& state_;
    AuditTarget target_;
    std::size_t unanswered_;
    std::optional<Surroundings> surroundings_;
};

} // namespace

std::optional<std::size_t> treeFingerprint(const Platform& platform, ProbeState& state,
                                           const AuditTarget& target, std::size_t most) {
    return Attempt(platform, state, target).fingerprint(most);
}

std::optional<WindowAudit> auditWindow(const Platform& platform, ProbeState& state,
                                       const AuditTarget& target, const AuditOptions& options,
                                       AuditFailure& failure) {
    constexpr int tries = 3;
    for (int attempt = 0; attempt < tries; ++attempt) {
        WindowAudit audit;
        failure = Attempt(platform, state, target).run(options, audit);
        if (failure == AuditFailure::none) {
            return audit;
        }
        if (failure != AuditFailure::changed) {
            break;
        }
    }
    return std::nullopt;
}

} // namespace lumetry
