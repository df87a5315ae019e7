#pragma once

#include "audit/element_tree.h"
#include "audit/window_audit.h"
#include "base/geometry.h"
#include "probe/role_bucket.h"

#include <cstddef>
#include <map>
#include <vector>

namespace lumetry {

/// One component that is to be measured.
struct ComponentChoice {
    ResolvedComponent resolved;
    std::size_t node = 0; ///< the component's place in the tree
    Rect frame;
    Rect textFrame; ///< of what its text is in: the label of a button
};

/// Which elements of a tree are measured: each component once, with what describes it best.
class ComponentChooser {
public:
    /// @param pageOnly of a web browser, what belongs to its page
    ComponentChooser(const ElementTree& tree, bool pageOnly);

    /// What is drawn last first, at most so many.
    /// @param audit counts elements, and what is left out
    [[nodiscard]] std::vector<ComponentChoice> choose(WindowAudit& audit, std::size_t limit);

private:
    void selectPage();
    void fold();
    void take(std::size_t place, const ResolvedComponent& resolved, WindowAudit& audit,
              std::size_t limit);

    const ElementTree& tree_;
    std::vector<bool> wanted_;
    std::vector<bool> folded_; ///< a part of what is measured instead
    std::vector<ComponentChoice> chosen_;
    std::map<std::size_t, std::size_t> byNode_; ///< to the place among the chosen
};

} // namespace lumetry
