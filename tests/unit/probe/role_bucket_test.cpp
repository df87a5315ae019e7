#include "probe/role_bucket.h"

#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

using enum Bucket;

TEST(Bucket, TellsRolesOfSimilarNamesApart) {
    using Case = std::pair<Bucket, std::vector<std::string_view>>;
    for (const auto& [bucket, roles] : {
             Case{text, {"AXStaticText", "AXHeading", "AXText", "AXLink"}},
             Case{control,
                  {"AXButton", "AXCheckBox", "AXRadioButton", "AXPopUpButton", "AXMenuButton",
                   "AXMenuItem", "AXSwitch", "AXDisclosureTriangle", "AXToggle"}},
             Case{input, {"AXTextField", "AXTextArea", "AXComboBox", "AXSearchField"}},
             Case{collection, {"AXList", "AXOutline", "AXTable", "AXGrid", "AXBrowser"}},
             Case{container,
                  {"AXWindow", "AXScrollArea", "AXSplitGroup", "AXWebArea", "AXToolbar",
                   "AXTabPanel", "AXApplication", "AXSheet", "AXDrawer"}},
             Case{graphic,
                  {"AXImage", "AXVideo", "AXSlider", "AXProgressIndicator", "AXDockItem",
                   "AXMenuBar", "AXMenu", "AXSplitter", "AXValueIndicator", "AXColorWell"}},
             Case{generic, {"AXGroup", "AXUnknown", "", "axbutton", "AXButton ", "AXTab"}},
         }) {
        for (const std::string_view role : roles) {
            EXPECT_EQ(bucketFor(role), bucket) << role;
        }
    }
}

TEST(ResolveComponent, ClimbsFromLabelsAndIconsToTheirControl) {
    struct Case {
        const char* role;       ///< empty for none
        const char* parentRole; ///< empty for none, null for no parent
        bool climbs;
        Bucket bucket;
        int reads;
    };
    for (const auto& [role, parentRole, climbs, bucket, reads] : {
             Case{"AXStaticText", "AXButton", true, control, 3},
             Case{"AXImage", "AXCheckBox", true, control, 3},
             Case{"AXStaticText", "AXTextField", true, input, 3},
             Case{"AXStaticText", "AXGroup", false, text, 3},
             Case{"AXImage", "AXToolbar", false, graphic, 3},
             Case{"AXStaticText", "", false, text, 3},
             Case{"AXStaticText", nullptr, false, text, 2},
             Case{"AXButton", "AXButton", false, control, 1},
             Case{"AXCell", "AXButton", false, generic, 1},
             Case{"", "AXButton", false, generic, 1},
         }) {
        SCOPED_TRACE(std::string(role) + " in " + (parentRole ? parentRole : "nothing"));
        FakeDesktop desktop;
        FakeElement& element = desktop.accessibility.makeElement(1, role);
        FakeElement& parent = desktop.accessibility.makeElement(1, parentRole ? parentRole : "");
        for (FakeElement* each : {&element, &parent}) {
            if (each->attributes.at("AXRole").as<std::string>()->empty()) {
                each->attributes.erase("AXRole");
            }
        }
        if (parentRole) {
            parent.setChildren({&element});
        }
        const auto resolved = resolveComponent(element.handle());
        EXPECT_EQ(resolved.component, climbs ? parent.handle() : element.handle());
        EXPECT_EQ(resolved.bucket, bucket);
        EXPECT_EQ(resolved.textSource, element.handle());
        EXPECT_EQ(desktop.accessibility.totalReads(), reads);
    }
}

} // namespace
} // namespace lumetry
