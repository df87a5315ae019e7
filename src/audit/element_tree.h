#pragma once

#include "audit/visibility.h"
#include "base/geometry.h"
#include "platform/ax_ui_element.h"
#include "platform/platform.h"
#include "probe/role_bucket.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace lumetry {

/// One element of a window, as far as it tells where and what it is.
struct ElementNode {
    AXUIElement element;
    std::optional<std::size_t> parent; ///< its place among the nodes
    std::vector<std::size_t> children; ///< in the application's order
    std::string role;                  ///< such as "AXButton"
    std::string title;                 ///< trimmed; empty for none
    std::optional<Rect> frame;         ///< accessibility space
    Rect clip;                         ///< what its parents let be seen of it
    Presence presence = Presence::whole;
};

/// How the reading of a tree ended; that its application stopped answering shows in
/// Accessibility::unanswered.
enum class TreeReading {
    complete,
    cutOff, ///< there are more elements than were wanted
};

/// The elements of a window, read level by level so that many are asked together. What lies in an
/// element of which nothing shows is not looked at.
class ElementTree {
public:
    using Progress = std::function<void(std::size_t elements)>;

    /// @param visibility of the window's contents
    ElementTree(const Platform& platform, const Visibility& visibility)
        : platform_(platform), visibility_(visibility) {}

    /// @param most elements that are looked at
    [[nodiscard]] TreeReading read(const AXUIElement& root, std::size_t most,
                                   const Progress& progress);

    /// Parents before their children; the root is the first.
    [[nodiscard]] const std::vector<ElementNode>& nodes() const { return nodes_; }
    /// Whether an element that shows says that its contents are still loading.
    [[nodiscard]] bool isBusy() const { return busy_; }
    /// Another number when elements have come, gone, moved or become visible.
    [[nodiscard]] std::size_t fingerprint() const;
    [[nodiscard]] std::optional<std::size_t> find(const AXUIElement& element) const;
    /// All of them, what is drawn last first: children before their parents, later ones before
    /// earlier ones.
    [[nodiscard]] std::vector<std::size_t> frontToBack() const;

private:
    void readBatch(std::size_t begin, std::size_t end);
    void askForRelatives(std::size_t begin, std::size_t end);
    void describe(ElementNode& node);
    void addChildren(std::size_t parent, std::size_t most);

    const Platform& platform_;
    const Visibility& visibility_;
    std::vector<ElementNode> nodes_;
    std::unordered_map<AXUIElement, std::size_t> places_;
    bool cutOff_ = false;
    bool busy_ = false;
};

} // namespace lumetry
