#pragma once

#include "audit/audited_platform.h"
#include "audit/component.h"
#include "audit/component_choice.h"
#include "audit/element_tree.h"
#include "audit/window_audit.h"
#include "platform/picture_capture.h"
#include "probe/probe_state.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace lumetry {

/// Measures components of a tree, many asked together.
class ComponentReader {
public:
    /// @param picture of the window
    ComponentReader(const Platform& platform, ProbeState& state, const WindowHit& window,
                    const ElementTree& tree, PictureCapture& picture)
        : audited_(platform, picture), platform_(audited_.platform()), state_(state),
          window_(window), tree_(tree), picture_(picture) {}

    /// Adds them to the audit; what turns out to be covered by something else of the window is
    /// counted as that.
    void read(std::span<const ComponentChoice> choices, WindowAudit& audit);

private:
    void prefetch(std::span<const ComponentChoice> choices);
    void prefetchLabels(std::span<const ComponentChoice> choices);
    [[nodiscard]] Component componentOf(const ComponentChoice& choice);
    [[nodiscard]] std::string ownTitleOf(const ComponentChoice& choice) const;
    [[nodiscard]] std::string titleOf(const ComponentChoice& choice) const;
    [[nodiscard]] bool showsText(const ComponentChoice& choice, const Component& component) const;
    [[nodiscard]] std::string pathOf(std::size_t component, const std::string& header) const;
    /// False when something else lies over it.
    [[nodiscard]] bool readColors(const ComponentChoice& choice, Component& component);
    [[nodiscard]] bool isInFront(const ComponentChoice& choice);

    AuditedPlatform audited_;
    const Platform& platform_;
    ProbeState& state_;
    WindowHit window_;
    const ElementTree& tree_;
    PictureCapture& picture_;
};

} // namespace lumetry
