#include "measured_desktop.h"
#include "prices_page.h"

#include "rig/chromium.h"
#include "rig/desktop_windows.h"

#include <gtest/gtest.h>

#include <cmath>

namespace lumetry::desktop {
namespace {

Json boxOf(const Rect& rect) {
    return Json::array({std::lround(rect.x), std::lround(rect.y), std::lround(rect.width),
                        std::lround(rect.height)});
}

std::string sizeText(const Rect& rect) {
    return std::to_string(std::lround(rect.width)) + " × " +
           std::to_string(std::lround(rect.height));
}

TEST(MeasureGtk, SaysTheSameAsTextAndAsJson) {
    MeasuredDesktop measured;
    const auto application = measured.startWidgetFactory();
    const auto button = measured.element("push button", "link button");
    const auto extents = button.extents();
    ASSERT_TRUE(extents);
    const Json json = measured.measureAt(middleOf(button));
    EXPECT_EQ(json["header"], "Button · link button");
    EXPECT_EQ(json["box"], boxOf(*extents));
    EXPECT_EQ(rowValue(json, "size"), sizeText(*extents));
    EXPECT_EQ(json["path"], "AX-real");
    EXPECT_TRUE(json["window"].is_array());
    EXPECT_FALSE(json["app"].get<std::string>().empty());

    const auto text = measured.measure(arguments(middleOf(button)));
    EXPECT_EQ(text.status.code, 0);
    EXPECT_TRUE(text.output.starts_with("Button · link button\n")) << text.output;
    for (const Json& row : json["rows"]) {
        EXPECT_NE(text.output.find(row["value"].get<std::string>()), std::string::npos)
            << text.output;
    }
    // Without a point, what is under the pointer.
    measured.desktop.input().movePointer(static_cast<int>(extents->midX()),
                                         static_cast<int>(extents->midY()));
    EXPECT_EQ(measured.measure({}).output, text.output);
}

TEST(MeasureGtk, MeasuresTheDistanceBetweenTwoElements) {
    MeasuredDesktop measured;
    const auto application = measured.startWidgetFactory();
    const auto first = measured.element("radio button", "Page 2");
    const auto second = measured.element("push button", "link button");
    const auto a = first.extents();
    const auto b = second.extents();
    ASSERT_TRUE(a && b);
    auto command = arguments(middleOf(first));
    const auto to = arguments(middleOf(second));
    command.insert(command.end(), {"--to", to[0], to[1], "--json"});
    const auto finished = measured.measure(command);
    ASSERT_EQ(finished.status.code, 0) << finished.error;
    const Json json = Json::parse(finished.output);
    EXPECT_EQ(json["from"], boxOf(*a));
    EXPECT_EQ(json["to"], boxOf(*b));
    const auto gap = [](double low, double high, double otherLow, double otherHigh) -> Json {
        const double distance = std::max(otherLow - high, low - otherHigh);
        return distance < 0 ? Json(nullptr) : Json(std::lround(distance));
    };
    EXPECT_EQ(json["horizontal"], gap(a->minX(), a->maxX(), b->minX(), b->maxX()));
    EXPECT_EQ(json["vertical"], gap(a->minY(), a->maxY(), b->minY(), b->maxY()));
}

// GTK is told the font by its settings file here.
TEST(MeasureGtk, TellsTheFontOfAText) {
    MeasuredDesktop measured;
    const auto application = measured.startWidgetFactory();
    const Json entry = measured.measureAt(middleOf(measured.element("text", "")));
    EXPECT_EQ(rowValue(entry, "text"), "#000000");
    const auto font = rowValue(entry, "font");
    ASSERT_TRUE(font);
    EXPECT_TRUE(font->ends_with(" · 13px · regular")) << *font;
}

// Nobody else has asked for the tree of the page: it has to be woken and waited for.
TEST(MeasureChromium, WakesAPageAndTellsHowItIsSet) {
    MeasuredDesktop measured;
    const auto browser = startChromiumWith(measured.desktop, pricesPage());
    static_cast<void>(waitForWindow(measured.desktop.server(), hasClass("Chromium")));
    expectPricesPage(measured, "DejaVu Sans · 16px");
}

// An application that knows nothing of accessibility, and a page that is one picture and asleep:
// there are only pixels to go by.
TEST(MeasurePixels, ReadsAnApplicationThatTellsNothing) {
    MeasuredDesktop measured;
    // Boxes are looked for within 150 points around the pointer.
    const auto clock = measured.desktop.start(
        {"xclock", "-norender", "-geometry", "140x140+200+100", "-bg", "#FFCC00"});
    const auto window = waitForWindow(measured.desktop.server(), hasClass("XClock"));
    const Rect& face = window.bounds;
    Json json;
    // The face is drawn some time after the window has come.
    requireUntil("the clock", [&] {
        json = measured.measureAt({face.x + 12, face.y + 12});
        return rowValue(json, "size").has_value();
    });
    EXPECT_EQ(json["path"], "pixel-only(AX-nil)");
    EXPECT_EQ(json["header"], "≈ element");
    EXPECT_TRUE(rowValue(json, "pixel").value_or("").ends_with("#FFCC00")) << json.dump();
    EXPECT_NEAR(json["box"][0].get<double>(), face.x, 2);
    EXPECT_NEAR(json["box"][1].get<double>(), face.y, 2);
    EXPECT_NEAR(json["box"][2].get<double>(), face.width, 3);
    EXPECT_NEAR(json["box"][3].get<double>(), face.height, 3);
}

} // namespace
} // namespace lumetry::desktop
