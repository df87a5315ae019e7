#include "prices_page.h"

#include "rig/processes/wait_until.h"

#include <gtest/gtest.h>

namespace lumetry::desktop {

const std::string& pricesPage() {
    static const std::string page = R"(<!doctype html><meta charset="utf-8"><title>Plans</title>
<style>
  body { margin: 0; background: white; font: 16px 'DejaVu Sans'; }
  button, h1, p, ul { position: absolute; left: 100px; margin: 0; box-sizing: border-box; }
  button { top: 60px; width: 200px; height: 48px; border: 0; background: #205080; color: #FFF0E0;
           font: 16px 'DejaVu Sans'; }
  h1 { top: 140px; width: 500px; font: 700 40px 'DejaVu Serif'; color: #7A1020; }
  ul { top: 260px; padding: 0; width: 640px; height: 60px; list-style: none; display: flex;
       gap: 20px; }
  li { width: 120px; height: 60px; background: #DDE; }
  .small { top: 460px; width: auto; height: auto; padding: 10px 20px; }
  p { top: 360px; padding: 20px; font: 20px 'DejaVu Sans'; color: #106040; }
</style>
<button>Buy now</button><h1>Our prices</h1>
<ul><li>One</li><li>Two</li><li>Three</li><li>Four</li></ul>
<p>With tax</p><button class="small">Sign in</button>)";
    return page;
}

void expectPricesPage(const MeasuredDesktop& measured, const std::string& buttonFont) {
    // Until the page is drawn there is nothing to be woken.
    requireUntil("the page", [&] {
        const Json json = measured.measureAt({110, 70});
        return rowValue(json, "fill") == "≈ #205080" || rowValue(json, "pixel") == "≈ #205080";
    });
    const Json button = measured.measureAt({110, 70});
    EXPECT_EQ(button["header"], "Button · Buy now");
    EXPECT_EQ(button["box"], Json::array({100, 60, 200, 48}));
    EXPECT_EQ(rowValue(button, "fill"), "≈ #205080");
    EXPECT_EQ(rowValue(button, "text"), "#FFF0E0");
    EXPECT_EQ(rowValue(button, "font"), buttonFont);

    const Json heading = measured.measureAt({140, 165});
    EXPECT_EQ(rowValue(heading, "font"), "DejaVu Serif · 40px · bold");
    EXPECT_EQ(rowValue(heading, "color"), "#7A1020");

    const Json list = measured.measureAt({230, 290}); // between two items
    EXPECT_EQ(rowValue(list, "items"), "4");
    EXPECT_EQ(rowValue(list, "gap"), "20px");
    EXPECT_EQ(rowValue(list, "item width"), "120px");

    const Json text = measured.measureAt({150, 392});
    EXPECT_EQ(text["header"], "StaticText · With tax");
    EXPECT_EQ(rowValue(text, "color"), "#106040");
    const Json paragraph = measured.measureAt({110, 370}); // beside its text
    EXPECT_EQ(rowValue(paragraph, "padding"), "20px");
    for (const double x : {105.0, 130.0}) { // beside its label, and on it
        const Json small = measured.measureAt({x, 475});
        EXPECT_EQ(small["header"], "Button · Sign in");
        EXPECT_EQ(rowValue(small, "padding"), "10px 20px");
    }
}

} // namespace lumetry::desktop
