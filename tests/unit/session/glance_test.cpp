#include "session/glance.h"

#include "support/fake_platform/fake_desktop.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace lumetry {
namespace {

constexpr Rect frame = {10, 20, 119.6, 31.4};

TEST(Glance, HeaderIsTheKindAndWhatIsWrittenOnIt) {
    struct Case {
        const char* name;
        std::optional<AXValue> role;
        std::optional<AXValue> title;
        std::optional<AXValue> value; ///< of the text source
        std::string header;
    };
    for (const auto& [name, role, title, value, header] : {
             Case{"title first", "AXButton", "Save", "Save it", "Button · Save"},
             Case{"value of the label", "AXButton", {}, "Hello world", "Button · Hello world"},
             Case{"blank title", "AXButton", " \n\u00A0", " Hello ", "Button · Hello"},
             Case{"no role", {}, "Save", {}, "Unknown · Save"},
             Case{"AX anywhere", "AXMAXimum", {}, {}, "Mimum"},
             Case{"26 characters after trimming",
                  "AXButton",
                  "  abcdefghijklmnopqrstuvwxyé!",
                  {},
                  "Button · abcdefghijklmnopqrstuvwxyé"},
         }) {
        FakeDesktop desktop;
        FakeElement& component = desktop.accessibility.makeElement(1, "");
        FakeElement& textSource = desktop.accessibility.makeElement(1, "AXStaticText");
        component.attributes.clear();
        component.set("AXValue", "the component's own");
        for (const auto& [attribute, given] : {std::pair{"AXRole", role}, {"AXTitle", title}}) {
            if (given) {
                component.set(attribute, *given);
            }
        }
        if (value) {
            textSource.set("AXValue", *value);
        }
        const Glance glance =
            deriveGlance(desktop.platform,
                         {component.handle(), Bucket::container, textSource.handle()}, frame, 0);
        EXPECT_EQ(glance.header, header) << name;
        EXPECT_EQ(glance.rows, std::vector{sizeRow(frame.size())}) << name;
    }
}

TEST(Glance, OfABrowserPointsToItsPages) {
    FakeDesktop desktop;
    desktop.launch(1, "Safari", "com.apple.Safari");
    FakeElement& element = desktop.accessibility.makeElement(1, "AXButton");
    const auto derive = [&] {
        return deriveGlance(desktop.platform, {element.handle(), Bucket::control, element.handle()},
                            frame, 0);
    };
    const Glance glance = derive();
    EXPECT_EQ(glance.header, "🌐 Safari · web");
    EXPECT_EQ(glance.rows,
              (std::vector<GlanceRow>{{"size", "120 × 31", {}}, {"for CSS", "Lumetry ⌥M", {}}}));
    EXPECT_FALSE(glance.liveColor);
    EXPECT_EQ(desktop.accessibility.totalReads(), 0);
    desktop.applications.running[1].localizedName.reset();
    EXPECT_EQ(derive().header, "🌐 Browser · web");
    element.pid.reset();
    EXPECT_EQ(derive().header, "Button") << "its process is unknown";
}

} // namespace
} // namespace lumetry
