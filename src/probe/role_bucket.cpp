#include "probe/role_bucket.h"

#include "probe/ax_access.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace lumetry {
namespace {

using enum Bucket;

constexpr std::array roleBuckets = std::to_array<std::pair<std::string_view, Bucket>>({
    {"AXStaticText", text},
    {"AXHeading", text},
    {"AXText", text},
    {"AXLink", text},
    {"AXButton", control},
    {"AXCheckBox", control},
    {"AXRadioButton", control},
    {"AXPopUpButton", control},
    {"AXMenuButton", control},
    {"AXMenuItem", control},
    {"AXSwitch", control},
    {"AXDisclosureTriangle", control},
    {"AXToggle", control},
    {"AXTextField", input},
    {"AXTextArea", input},
    {"AXComboBox", input},
    {"AXSearchField", input},
    {"AXList", collection},
    {"AXOutline", collection},
    {"AXTable", collection},
    {"AXGrid", collection},
    {"AXBrowser", collection},
    {"AXWindow", container},
    {"AXScrollArea", container},
    {"AXSplitGroup", container},
    {"AXWebArea", container},
    {"AXToolbar", container},
    {"AXTabPanel", container},
    {"AXApplication", container},
    {"AXSheet", container},
    {"AXDrawer", container},
    {"AXImage", graphic},
    {"AXVideo", graphic},
    {"AXSlider", graphic},
    {"AXProgressIndicator", graphic},
    {"AXDockItem", graphic},
    {"AXMenuBar", graphic},
    {"AXMenu", graphic},
    {"AXSplitter", graphic},
    {"AXValueIndicator", graphic},
    {"AXColorWell", graphic},
});

} // namespace

Bucket bucketFor(std::string_view role) {
    const auto* const found =
        std::ranges::find(roleBuckets, role, &std::pair<std::string_view, Bucket>::first);
    return found == roleBuckets.end() ? generic : found->second;
}

ResolvedComponent resolveComponent(const AXUIElement& element) {
    const Bucket own = bucketFor(axString(element, "AXRole").value_or("AXUnknown"));
    if (own == text || own == graphic) {
        if (const auto parent = axParent(element)) {
            const Bucket parents = bucketFor(axString(*parent, "AXRole").value_or(""));
            if (parents == control || parents == input) {
                return {*parent, parents, element};
            }
        }
    }
    return {element, own, element};
}

} // namespace lumetry
