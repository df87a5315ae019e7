#include "support/real_desktop/overlay_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

TEST(OverlayReadout, TellsTheKindsOfDrawingApart) {
    struct Case {
        std::vector<std::string> texts;
        OverlayReadout readout;
        std::string line;
    };
    const std::vector<Case> cases = {
        {{}, {false, "", {}, {}}, "nothing"},
        {{"esc", "exit"}, {true, "", {}, {}}, "nothing"},
        {{"esc", "exit", "Button · Save", "size", "80 × 32", "padding", "8"},
         {true, "Button · Save", {{"size", "80 × 32"}, {"padding", "8"}}, {}},
         "Button · Save: size 80 × 32, padding 8"},
        {{"esc", "exit", "color", "#FFFFFF"},
         {true, "", {{"color", "#FFFFFF"}}, {}},
         "color #FFFFFF"},
        {{"esc", "exit", "24px", "8px"}, {true, "", {}, {"24px", "8px"}}, "24px, 8px"},
        // Looks like a distance, but is what an element is called.
        {{"esc", "exit", "px", "size", "1 × 1"},
         {true, "px", {{"size", "1 × 1"}}, {}},
         "px: size 1 × 1"},
    };
    for (const auto& [texts, readout, line] : cases) {
        SCOPED_TRACE(line);
        EXPECT_EQ(parseOverlayTexts(texts), readout);
        EXPECT_EQ(parseOverlayTexts(texts).line(), line);
    }
}

} // namespace
} // namespace lumetry::desktop
