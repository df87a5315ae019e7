#include "measured_desktop.h"

#include "rig/desktop_guard.h"
#include "rig/screenshot.h"
#include "support/pictures/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace lumetry::desktop {
namespace {

/// One clear sentence, nothing else, and status 2.
void expectRefusal(const FinishedProgram& finished, const std::string& expected) {
    EXPECT_EQ(finished.status.code, 2);
    EXPECT_EQ(finished.output, "");
    EXPECT_TRUE(finished.error.starts_with("lumetry-measure: ")) << finished.error;
    EXPECT_NE(finished.error.find(expected), std::string::npos) << finished.error;
    EXPECT_EQ(std::ranges::count(finished.error, '\n'), 1) << finished.error;
}

/// Runs it where there is no desktop at all.
FinishedProgram measureWithoutDesktop(std::vector<std::string> command) {
    command.insert(command.begin(), LUMETRY_MEASURE);
    ProcessOptions options;
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS"}) {
        options.environment.erase(name);
    }
    return runProgram(command, options);
}

TEST(MeasureUsage, RefusesWhatMakesNoSense) {
    const struct {
        std::vector<std::string> arguments;
        const char* expected;
    } cases[] = {
        {{"12"}, "--help"},
        {{"left", "top"}, "--help"},
        {{"--frobnicate"}, "--help"},
        {{"--to", "3", "4"}, "give the point"},
        {{"--image", "some.png"}, "give the point"},
        {{"1", "2", "--image", "some.png", "--to", "3", "4"}, "--help"},
        {{"1", "2", "--image", "/nowhere/some.png"}, "give the path of a PNG"},
        {{"1", "2", "--scale", "2"}, "--help"},
        {{"1", "2", "--image", "some.png", "--scale", "0"}, "--help"},
        {{"1", "2", "--image", "some.png", "--scale", "nan"}, "--help"},
        {{"1", "2"}, "DISPLAY"},
    };
    for (const auto& [arguments, expected] : cases) {
        SCOPED_TRACE(arguments.front());
        expectRefusal(measureWithoutDesktop(arguments), expected);
    }
    const auto help = measureWithoutDesktop({"--help"});
    EXPECT_EQ(help.status.code, 0);
    EXPECT_NE(help.output.find("--json"), std::string::npos);
}

TEST(MeasureUsage, SaysWhyADesktopCannotBeRead) {
    DesktopOptions options;
    options.windowManager = options.compositor = false;
    options.accessibility = AccessibilityBus::disabled;
    const MeasuredDesktop disabled(options);
    expectRefusal(disabled.measure({"1", "2"}), "org.a11y.Status");
    options.accessibility = AccessibilityBus::none;
    const MeasuredDesktop without(options);
    expectRefusal(without.measure({"1", "2"}), "at-spi2-core");
    const MeasuredDesktop empty;
    const auto outside = empty.measure({"5000", "20"});
    EXPECT_EQ(outside.status.code, 1);
    EXPECT_NE(outside.error.find("on no screen"), std::string::npos) << outside.error;
    // Of an empty desktop there is its colour.
    EXPECT_EQ(empty.measure({"20", "20"}).status.code, 0);
    xcb_force_screen_saver(empty.desktop.server().get(), XCB_SCREEN_SAVER_ACTIVE);
    empty.desktop.server().sync();
    expectRefusal(empty.measure({"20", "20"}), "unlock it");
}

TEST(MeasureImage, MeasuresAPictureWithoutAnyDesktop) {
    const DesktopGuard room;
    const auto file = room.folder() / "picture.png";
    constexpr int radius = 12;
    Bitmap picture = evenBitmap(640, 480, 0xF4F4F4);
    fillRoundedRect(picture, {200, 150, 180, 60}, radius, 0x0F6B5C);
    writePng(picture, file);

    Json measured;
    for (const double scale : {2.0, 1.0}) {
        const auto number = [scale](int pixels) { return std::to_string(pixels / scale); };
        const auto finished =
            measureWithoutDesktop({"--json", "--image", file.string(), number(290), number(180),
                                   "--scale", std::to_string(scale)});
        ASSERT_EQ(finished.status.code, 0) << finished.error;
        measured = Json::parse(finished.output);
        // Edges are found to the pixel beside them.
        const Rect box = {measured["box"][0], measured["box"][1], measured["box"][2],
                          measured["box"][3]};
        EXPECT_NEAR(box.minX(), 200 / scale, 1);
        EXPECT_NEAR(box.minY(), 150 / scale, 1);
        EXPECT_NEAR(box.maxX(), 380 / scale, 1);
        EXPECT_NEAR(box.maxY(), 210 / scale, 1);
        EXPECT_EQ(measured["scale"], scale);
    }
    EXPECT_EQ(measured["window"], nullptr);
    EXPECT_EQ(measured["path"], "image");
    EXPECT_EQ(rowValue(measured, "fill"), "≈ #0F6B5C");
    EXPECT_TRUE(std::ranges::any_of(measured["rows"], [](const Json& row) {
        return row["label"] == "fill" && row["swatch"] == "#0F6B5C";
    }));
    const auto text = measureWithoutDesktop({"--image", file.string(), "290", "180"});
    EXPECT_NE(text.output.find("≈ #0F6B5C"), std::string::npos) << text.output;

    expectRefusal(measureWithoutDesktop({"--image", file.string(), "640", "180"}),
                  "640 × 480 pixels");
    std::ofstream(room.folder() / "text.png") << "no picture";
    expectRefusal(
        measureWithoutDesktop({"--image", (room.folder() / "text.png").string(), "1", "1"}),
        "give the path of a PNG");
}

} // namespace
} // namespace lumetry::desktop
