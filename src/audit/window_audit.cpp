#include "audit/window_audit.h"

#include "audit/audited_platform.h"
#include "audit/element_tree.h"
#include "audit/exact_color.h"
#include "audit/visibility.h"
#include "base/text.h"
#include "platform/accessibility.h"
#include "platform/applications.h"
#include "platform/ax_value.h"
#include "platform/window_server.h"
#include "probe/ax_access.h"
#include "probe/electron.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
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

void count(LeftOut& leftOut, Presence presence) {
    switch (presence) {
    case Presence::whole:
        return;
    case Presence::hidden:
        ++leftOut.hidden;
        return;
    case Presence::clipped:
    case Presence::partlyClipped:
        ++leftOut.clipped;
        return;
    case Presence::covered:
    case Presence::partlyCovered:
        ++leftOut.covered;
        return;
    case Presence::offScreen:
    case Presence::partlyOffScreen:
        ++leftOut.offScreen;
        return;
    }
}

/// Of what holds others, parts can be measured; of everything else neither the size nor the colours
/// are right unless it is to be seen as a whole.
bool holdsOthers(Bucket bucket) {
    return bucket == Bucket::collection || bucket == Bucket::container || bucket == Bucket::generic;
}

std::string kindAndTitle(const std::string& role, const std::string& title) {
    constexpr std::size_t titleCharacters = 26;
    const std::string kind = removingOccurrences(role, "AX");
    return title.empty() ? kind : kind + " · " + firstCharacters(title, titleCharacters);
}

class Audit {
public:
    Audit(const Platform& platform, const ElementTree& tree, bool pageOnly, PictureCapture& picture)
        : audited_(platform, picture), platform_(audited_.platform()), tree_(tree),
          pageOnly_(pageOnly), picture_(picture) {}

    void measure(WindowAudit& audit, const AuditOptions& options) {
        choose(audit, options.limit);
        for (std::size_t begin = 0; begin < chosen_.size(); begin += batchSize) {
            const std::size_t end = std::min(chosen_.size(), begin + batchSize);
            prefetch(begin, end);
            for (std::size_t place = begin; place < end; ++place) {
                audit.components.push_back(componentOf(chosen_[place]));
            }
            if (options.progress) {
                options.progress(end, chosen_.size());
            }
        }
    }

private:
    struct Choice {
        ResolvedComponent resolved;
        std::size_t node;
        Rect frame;
    };

    /// Which elements are measured, each with what describes it best.
    void choose(WindowAudit& audit, std::size_t limit) {
        std::map<std::size_t, std::size_t> chosenByNode;
        const std::vector<bool> wanted = wantedNodes();
        for (const std::size_t place : tree_.frontToBack()) {
            const ElementNode& node = tree_.nodes()[place];
            if (!wanted[place]) {
                continue;
            }
            const bool measurable = node.presence == Presence::whole ||
                                    (!isGone(node.presence) && holdsOthers(bucketFor(node.role)));
            if (!measurable) {
                count(audit.leftOut, node.presence);
                continue;
            }
            if (!node.frame) {
                continue;
            }
            ++audit.elements;
            const ResolvedComponent resolved = resolveComponent(node.element);
            const std::size_t component = tree_.find(resolved.component).value_or(place);
            const auto known = chosenByNode.find(component);
            if (known != chosenByNode.end()) {
                preferText(chosen_[known->second], resolved);
                continue;
            }
            const auto& frame = tree_.nodes()[component].frame;
            if (!frame || !wanted[component]) {
                continue;
            }
            if (chosen_.size() >= limit) {
                ++audit.leftOut.beyondLimit;
                continue;
            }
            chosenByNode.emplace(component, chosen_.size());
            chosen_.push_back({resolved, component, *frame});
        }
    }

    /// A component may be described by itself, by an icon in it or by a text in it: the text says
    /// the most.
    static void preferText(Choice& choice, const ResolvedComponent& other) {
        const auto isText = [](const ResolvedComponent& resolved) {
            return bucketFor(axString(resolved.textSource, "AXRole").value_or("")) == Bucket::text;
        };
        if (!isText(choice.resolved) && isText(other)) {
            choice.resolved = other;
        }
    }

    /// Of a browser, what belongs to its page.
    [[nodiscard]] std::vector<bool> wantedNodes() const {
        const auto& nodes = tree_.nodes();
        std::vector<bool> wanted(nodes.size(), !pageOnly_);
        if (pageOnly_) {
            for (std::size_t place = 0; place < nodes.size(); ++place) {
                const auto& parent = nodes[place].parent;
                wanted[place] = nodes[place].role == "AXWebArea" || (parent && wanted[*parent]);
            }
        }
        return wanted;
    }

    void prefetch(std::size_t begin, std::size_t end) {
        constexpr std::array<std::string_view, 6> shown = {
            "AXRole", "AXTitle", "AXValue", "AXChildren", "AXEnabled", "AXNumberOfCharacters"};
        std::vector<AXUIElement> elements;
        std::vector<AXUIElement> texts;
        for (std::size_t place = begin; place < end; ++place) {
            const ResolvedComponent& resolved = chosen_[place].resolved;
            elements.push_back(resolved.component);
            elements.push_back(resolved.textSource);
            if (resolved.bucket == Bucket::text || resolved.bucket == Bucket::control ||
                resolved.bucket == Bucket::input) {
                texts.push_back(resolved.textSource);
            }
        }
        platform_.accessibility.prefetch(elements, shown);
        constexpr std::array<std::string_view, 1> typography = {"AXAttributedStringForRange"};
        platform_.accessibility.prefetch(texts, typography);
        prefetchLabels(begin, end);
    }

    /// Of those that have to have a title, and have none of their own.
    void prefetchLabels(std::size_t begin, std::size_t end) {
        constexpr std::array<std::string_view, 1> label = {"AXTitleUIElement"};
        constexpr std::array<std::string_view, 2> titles = {"AXTitle", "AXValue"};
        std::vector<AXUIElement> untitled;
        for (std::size_t place = begin; place < end; ++place) {
            const Choice& choice = chosen_[place];
            if (isLabelled(choice.resolved.bucket) && ownTitleOf(choice).empty()) {
                untitled.push_back(tree_.nodes()[choice.node].element);
            }
        }
        platform_.accessibility.prefetch(untitled, label);
        std::vector<AXUIElement> labels;
        for (const AXUIElement& element : untitled) {
            if (auto found = labelOf(element)) {
                labels.push_back(std::move(*found));
            }
        }
        platform_.accessibility.prefetch(labels, titles);
    }

    [[nodiscard]] Component componentOf(const Choice& choice) {
        const ResolvedComponent& resolved = choice.resolved;
        Glance glance = deriveGlance(platform_, resolved, choice.frame, noWindow);
        Component component;
        component.role = tree_.nodes()[choice.node].role;
        component.bucket = resolved.bucket;
        component.header = std::move(glance.header);
        component.measures = std::move(glance.measures);
        component.frame = choice.frame;
        component.parent = tree_.nodes()[choice.node].parent;
        component.path = pathOf(choice.node, component.header);
        component.enabled = isEnabled(resolved.component);
        const bool hasText = !textOf(resolved.textSource).empty();
        component.title = titleOf(choice);
        component.showsText =
            showsText(component, hasText, !(resolved.component == resolved.textSource));
        if (component.measures.text.font) {
            component.typeface = typefaceOf(*component.measures.text.font);
        }
        if (auto& fill = component.measures.surface.fill) {
            const auto exact = exactColor(picture_, choice.frame, *fill);
            component.evenFill = exact.has_value();
            fill = exact ? exact : fill;
        }
        return component;
    }

    [[nodiscard]] static std::string textOf(const AXUIElement& element) {
        return trimmed(axString(element, "AXValue").value_or(""));
    }

    /// What it is titled itself, or what is written in it; what is in a field is no title.
    [[nodiscard]] std::string ownTitleOf(const Choice& choice) const {
        const ElementNode& node = tree_.nodes()[choice.node];
        const Bucket bucket = choice.resolved.bucket;
        if (!node.title.empty() || bucket == Bucket::input || bucket == Bucket::graphic) {
            return node.title;
        }
        std::string text = textOf(choice.resolved.textSource);
        return text.empty() ? textOf(choice.resolved.component) : text;
    }

    [[nodiscard]] static std::optional<AXUIElement> labelOf(const AXUIElement& element) {
        const auto label = element.copyAttributeValue("AXTitleUIElement");
        return label ? label->as<AXUIElement>() : std::nullopt;
    }

    /// Whether labels of others say what it is for.
    [[nodiscard]] static bool isLabelled(Bucket bucket) {
        return bucket == Bucket::control || bucket == Bucket::input || bucket == Bucket::graphic;
    }

    [[nodiscard]] std::string titleOf(const Choice& choice) const {
        std::string own = ownTitleOf(choice);
        const auto label = own.empty() && isLabelled(choice.resolved.bucket)
                               ? labelOf(tree_.nodes()[choice.node].element)
                               : std::nullopt;
        if (!label) {
            return own;
        }
        std::string title = trimmed(axString(*label, "AXTitle").value_or(""));
        return title.empty() ? textOf(*label) : title;
    }

    /// Whether the ink of a component is that of a text. What only has a title and nothing inside
    /// shows that title.
    [[nodiscard]] static bool showsText(const Component& component, bool hasText, bool isLabelled) {
        switch (component.bucket) {
        case Bucket::text:
            return hasText || !component.title.empty();
        case Bucket::input:
            return hasText;
        case Bucket::control:
            return (isLabelled && hasText) || component.measures.text.font.has_value();
        default:
            return false;
        }
    }

    [[nodiscard]] static bool isEnabled(const AXUIElement& element) {
        const auto enabled = element.copyAttributeValue("AXEnabled");
        return !enabled || enabled->as<bool>().value_or(true);
    }

    /// The titled elements and the containers that the component lies in, and the component.
    [[nodiscard]] std::string pathOf(std::size_t component, const std::string& header) const {
        constexpr std::size_t deepest = 64;
        std::vector<std::string> steps = {header};
        auto place = tree_.nodes()[component].parent;
        for (; place && steps.size() < deepest; place = tree_.nodes()[*place].parent) {
            const ElementNode& node = tree_.nodes()[*place];
            if (!node.title.empty() || bucketFor(node.role) != Bucket::generic) {
                steps.push_back(kindAndTitle(node.role, node.title));
            }
        }
        std::string path;
        for (std::size_t step = steps.size(); step-- > 0;) {
            path += onOneLine(steps[step]);
            path += step > 0 ? " / " : "";
        }
        return path;
    }

    AuditedPlatform audited_;
    const Platform& platform_;
    const ElementTree& tree_;
    bool pageOnly_;
    PictureCapture& picture_;
    std::vector<Choice> chosen_;
};

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

/// What the screen shows of an area; empty where it may not be read.
Bitmap pictureOf(const Platform& platform, const Rect& area) {
    auto picture = platform.windowServer.preflightScreenCaptureAccess()
                       ? platform.screenCapture.captureBelow(area, noWindow)
                       : std::nullopt;
    return picture ? std::move(*picture) : Bitmap();
}

AuditFailure whyNoAnswer(const Platform& platform, pid_t pid) {
    return platform.applications.runningApplication(pid) ? AuditFailure::noAnswer
                                                         : AuditFailure::ended;
}

/// One try, during which nothing may move.
std::optional<WindowAudit> auditOnce(const Platform& platform, ProbeState& state,
                                     const AuditTarget& target, const AuditOptions& options,
                                     AuditFailure& failure) {
    const auto surroundings = surroundingsOf(platform.windowServer, target);
    if (!surroundings) {
        failure = AuditFailure::ended;
        return std::nullopt;
    }
    const Token kept = platform.accessibility.keepReplies();
    const pid_t pid = target.window.pid;
    const auto root = windowElement(platform, state, {pid, surroundings->window});
    if (!root) {
        failure = platform.applications.runningApplication(pid) ? AuditFailure::noTree
                                                                : AuditFailure::ended;
        return std::nullopt;
    }
    WindowAudit audit;
    audit.app = bundleID(platform.applications, pid);
    audit.title = platform.windowServer.windowName(target.number).value_or("");
    audit.window = surroundings->window;
    const auto screens = platform.windowServer.screens();
    audit.scale = screens.empty() ? 1 : screens.front().backingScaleFactor;
    PictureCapture picture(pictureOf(platform, audit.window), audit.scale, audit.window.origin());

    const Visibility visibility(surroundings->window, surroundings->above, surroundings->screens);
    ElementTree tree(platform, visibility);
    // What is not measured is mostly part of what is.
    constexpr std::size_t elementsPerComponent = 8;
    const auto reading =
        tree.read(*root, options.limit * elementsPerComponent, [&](std::size_t elements) {
            if (options.progress) {
                options.progress(0, elements);
            }
        });
    if (reading == TreeReading::noAnswer) {
        failure = whyNoAnswer(platform, pid);
        return std::nullopt;
    }
    Audit(platform, tree, isBrowser(platform, pid), picture).measure(audit, options);
    numberPaths(audit.components);
    const bool onlyTheWindow = std::ranges::all_of(audit.components, [](const Component& one) {
        return one.role == "AXWindow" || one.role == "AXApplication";
    });
    const auto after = surroundingsOf(platform.windowServer, target);
    if (!after || !platform.applications.runningApplication(pid)) {
        failure = AuditFailure::ended;
    } else if (after != surroundings) {
        failure = AuditFailure::changed;
    } else if (onlyTheWindow) {
        failure = tree.nodes().size() == 1 ? AuditFailure::noTree : AuditFailure::nothing;
    } else {
        failure = AuditFailure::none;
        audit.picture = picture.takePicture();
        return audit;
    }
    return std::nullopt;
}

} // namespace

std::optional<AXUIElement> windowElement(const Platform& platform, ProbeState& state,
                                         const WindowHit& window) {
    constexpr std::array<double, 5> shares = {0.5, 0.25, 0.75, 0.1, 0.9};
    constexpr int deepest = 1000;
    for (const double down : shares) {
        for (const double right : shares) {
            const Point at = {window.bounds.x + right * window.bounds.width,
                              window.bounds.y + down * window.bounds.height};
            auto element = axElementAt(platform, state, at, window);
            for (int level = 0; element && level < deepest; ++level) {
                const std::string role = axString(*element, "AXRole").value_or("");
                if (role == "AXWindow" || role == "AXSheet" || role == "AXDrawer") {
                    break;
                }
                const auto parent = axParent(*element);
                if (!parent || axString(*parent, "AXRole") == "AXApplication") {
                    break;
                }
                element = parent;
            }
            if (element) {
                return element;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> treeFingerprint(const Platform& platform, ProbeState& state,
                                           const AuditTarget& target, std::size_t most) {
    const auto surroundings = surroundingsOf(platform.windowServer, target);
    if (!surroundings) {
        return std::nullopt;
    }
    const Token kept = platform.accessibility.keepReplies();
    const auto root = windowElement(platform, state, {target.window.pid, surroundings->window});
    if (!root) {
        return std::nullopt;
    }
    const Visibility visibility(surroundings->window, surroundings->above, surroundings->screens);
    ElementTree tree(platform, visibility);
    const bool read = tree.read(*root, most, {}) != TreeReading::noAnswer;
    return read && tree.nodes().size() > 1 ? std::optional(tree.fingerprint()) : std::nullopt;
}

std::optional<WindowAudit> auditWindow(const Platform& platform, ProbeState& state,
                                       const AuditTarget& target, const AuditOptions& options,
                                       AuditFailure& failure) {
    constexpr int tries = 3;
    for (int attempt = 0; attempt < tries; ++attempt) {
        if (auto audit = auditOnce(platform, state, target, options, failure)) {
            return audit;
        }
        if (failure != AuditFailure::changed) {
            break;
        }
    }
    return std::nullopt;
}

} // namespace lumetry
