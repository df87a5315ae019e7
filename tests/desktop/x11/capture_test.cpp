#include "capture_rig.h"

#include "platform/overlay_window.h"
#include "rig/desktop_windows.h"
#include "rig/screenshot.h"
#include "support/counting_rasterizer/counting_rasterizer.h"
#include "support/pictures/pictures.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr std::uint32_t transparent = 0;
/// What the compositing manager shows where there is nothing.
constexpr std::uint32_t managersGrey = 0xFF808080;

X11Rig::Options with(bool compositor) {
    return {.compositor = compositor};
}

struct Expected {
    double x;
    double y;
    std::uint32_t color;
    const char* what;
};

void expectPixels(CaptureRig& rig, const std::vector<Expected>& expected) {
    const Bitmap all = rig.captured({0, 0, 800, 600});
    for (const Expected& one : expected) {
        const std::uint32_t color = all.at(static_cast<int>(one.x), static_cast<int>(one.y));
        EXPECT_TRUE(isNear(color, one.color))
            << one.what << ": " << std::hex << color << ", not " << one.color;
    }
}

/// With a compositing manager and without.
class X11Capture : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Compositing, X11Capture, testing::Bool(),
                         [](const auto& test) { return test.param ? "With" : "Without"; });

TEST_P(X11Capture, ShowsWindowsAsTheyLieOverEachOther) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    const auto lower = rig.show({100, 100, 200, 200}, green, {.border = 5});
    const auto menu = rig.show({200, 200, 200, 200}, blue, {.overrideRedirect = true});
    rig.fill(menu, {50, 50, 10, 10}, 0xFFFFFF);
    expectPixels(rig, {{50, 50, red, "the lowest"},
                       {102, 150, 0xFF000000, "a border"},
                       {105, 150, green, "behind the border"},
                       {202, 202, blue, "a menu over it"},
                       {255, 255, 0xFFFFFFFF, "what has been drawn into the menu"},
                       {308, 150, 0xFF000000, "the border's right side"},
                       {310, 150, red, "beside it"}});
    rig.raise(lower);
    expectPixels(rig, {{205, 205, green, "raised"}, {320, 320, blue, "the menu's rest"}});
    rig.move(lower, {500, 300, 250, 100});
    expectPixels(rig, {{205, 205, blue, "moved away"}, {740, 390, green, "grown"}});
    rig.unmap(menu);
    expectPixels(rig, {{205, 205, red, "hidden"}});
    rig.map(menu);
    expectPixels(rig, {{205, 205, blue, "shown again"}});
}

TEST_P(X11Capture, LeavesOutWhatIsNoLongerThere) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    const auto middle = rig.show({0, 0, 800, 600}, green);
    const auto top = rig.show({0, 0, 800, 600}, blue);
    ASSERT_EQ(rig.pixel(10, 10), blue);
    // The program does not know yet.
    rig.destroy(top);
    EXPECT_EQ(rig.capture().captureBelow({10, 10, 1, 1}, 0)->at(0, 0), green);
    rig.unmap(middle);
    EXPECT_EQ(rig.capture().captureBelow({10, 10, 1, 1}, 0)->at(0, 0), red);
    EXPECT_EQ(rig.pixel(10, 10), red);
}

TEST_P(X11Capture, TakesTheWindowsBelowOneOnly) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    const auto own = rig.ownWindow({0, 0, 300, 300}, {.color = green});
    rig.map(own);
    const auto clickThrough = rig.show({200, 0, 100, 100}, blue);
    rig.emptyInputShape(clickThrough);
    EXPECT_EQ(rig.pixel(10, 10), red) << "its own windows are not looked for";
    EXPECT_EQ(rig.pixel(210, 10), blue) << "the pointer goes through, but it is seen";
    EXPECT_EQ(rig.pixel(10, 10, own), red);
    EXPECT_EQ(rig.pixel(210, 10, own), red) << "lies above";
    EXPECT_EQ(rig.pixel(210, 10, clickThrough), green) << "lies below, whoever's it is";
    rig.unmap(own);
    EXPECT_EQ(rig.pixel(210, 10, own), blue) << "nothing lies above a hidden window";
    const auto late = rig.foreignWindow({0, 0, 50, 50}, {.inputOnly = true});
    rig.map(late);
    EXPECT_EQ(rig.pixel(10, 10), red) << "has no pixels";
}

TEST_P(X11Capture, HasTransparencyOnlyWhereItShows) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    // Half-transparent, premultiplied.
    rig.show({0, 0, 100, 100}, 0x80000080, {.translucent = true});
    const auto faint = rig.show({100, 0, 100, 100}, green);
    rig.setNumbers(faint, "_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {0x80000000});
    rig.show({200, 0, 100, 100}, 0, {.translucent = true});
    const bool blends = GetParam();
    expectPixels(rig, {{50, 50, blends ? 0xFF661090 : 0xFF000080, "an alpha channel"},
                       {150, 50, blends ? 0xFF766528 : green, "opacity of the whole window"},
                       {250, 50, blends ? red : 0xFF000000, "transparent"},
                       {350, 50, red, "beside them"}});
}

TEST_P(X11Capture, CutsWindowsToTheirShape) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    const auto shaped = rig.show({100, 100, 300, 300}, green, {.border = 10});
    ASSERT_EQ(rig.pixel(250, 250), green);
    rig.shape(shaped, {{0, 0, 40, 300}, {200, 0, 100, 40}, {600, 600, 10, 10}});
    expectPixels(rig, {{105, 250, red, "the border is cut off"},
                       {110, 250, green, "first part"},
                       {149, 110, green, "first part's end"},
                       {150, 110, red, "between"},
                       {310, 149, green, "second part"},
                       {310, 150, red, "below it"}});
    const auto above = rig.show({200, 200, 50, 50}, blue);
    EXPECT_EQ(rig.pixel(225, 225), blue) << "another window where the shape has a hole";
    rig.destroy(above);
    const auto half =
        rig.capture().captureBelow({0, 0, 400, 400}, 0, {200, 200}, Interpolation::low);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->at(74, 125), green);
    EXPECT_EQ(half->at(75, 125), red);
    rig.shape(shaped, {});
    EXPECT_EQ(rig.pixel(110, 250), red) << "nothing left";
}

class TextView final : public ContentView {
public:
    void draw(Canvas& canvas, const Rect& windowFrame) override {
        canvas.fillRoundedRect({0, 0, windowFrame.width, windowFrame.height}, 0, accentPink);
        canvas.drawText("drawn", {0, 0}, {FontFamily::system, 13}, white);
    }
};

TEST_P(X11Capture, NeverShowsTheOverlay) {
    CaptureRig rig(with(GetParam()));
    const std::uint32_t bare = GetParam() ? managersGrey : green;
    rig.setRootBackground(green);
    const auto window = rig.show({0, 0, 800, 500}, red);
    rig.awaitPixel(300, 550, bare);
    // Without a background the server cannot make good for what it has lost.
    const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
    xcb_change_window_attributes(rig.xcb(), window, XCB_CW_BACK_PIXMAP, &none);
    rig.fill(window, {0, 0, 400, 500}, blue);
    const auto& server = rig.desktop.server();
    for (const bool again : {false, true}) {
        CountingRasterizer rasterizer;
        TextView view;
        const auto overlay = rig.x11().overlayWindows(rasterizer).makeWindow({0, 0, 800, 600}, {});
        overlay->setContentView(view);
        overlay->orderFrontRegardless();
        ASSERT_TRUE(rig.loop.runUntil([&] {
            return screenshot(server, {300, 300, 1, 1}).at(0, 0) == 0xFFFF3D8A;
        }));
        const Bitmap below = rig.captured({200, 0, 400, 600}, overlay->windowNumber());
        for (std::size_t i = 0; i < below.pixels.size(); ++i) {
            const std::uint32_t covered = i % 400 < 200 ? blue : red;
            ASSERT_EQ(below.pixels[i], i / 400 < 500 ? covered : bare)
                << i << (again ? " again" : "");
        }
        // What changes below shows at once, and the overlay stays where it is.
        rig.fill(window, {300, 300, 1, 1}, green);
        EXPECT_EQ(rig.pixel(300, 300, overlay->windowNumber()), green);
        EXPECT_EQ(screenshot(server, {300, 300, 1, 1}).at(0, 0), 0xFFFF3D8A);
        rig.fill(window, {300, 300, 1, 1}, blue);
        rig.move(window, {0, 100, 800, 500});
        EXPECT_EQ(rig.pixel(300, 50, overlay->windowNumber()), bare) << "uncovered since";
        rig.move(window, {0, 0, 800, 500});
        overlay->orderOut();
        ASSERT_TRUE(rig.loop.runUntil([&] {
            return screenshot(server, {300, 300, 1, 1}).at(0, 0) == blue;
        }));
    }
}

TEST_P(X11Capture, ShowsAnApplicationAsTheScreenDid) {
    auto options = with(GetParam());
    options.windowManager = true;
    CaptureRig rig(options);
    const auto& server = rig.desktop.server();
    rig.setNumbers(server.root(), "_XROOTPMAP_ID", XCB_ATOM_PIXMAP,
                   {rig.pixmap({800, 600}, 0x808080)});
    const auto factory = rig.desktop.start({"gtk3-demo"});
    waitForWindow(server, hasClass("Gtk3-demo"));
    const auto before = settledScreenshot(server, {0, 0, 800, 600}, std::chrono::milliseconds(500));
    ASSERT_TRUE(before);
    ASSERT_GT(std::set(before->pixels.begin(), before->pixels.end()).size(), 50U)
        << "the application has drawn itself";

    CountingRasterizer rasterizer;
    TextView view;
    const auto overlay = rig.x11().overlayWindows(rasterizer).makeWindow({0, 0, 800, 600}, {});
    overlay->setContentView(view);
    overlay->orderFrontRegardless();
    ASSERT_TRUE(rig.loop.runUntil([&] {
        return screenshot(server, {300, 300, 1, 1}).at(0, 0) == 0xFFFF3D8A;
    }));
    const Bitmap below = rig.captured({0, 0, 800, 600}, overlay->windowNumber());
    std::size_t different = 0;
    for (std::size_t i = 0; i < below.pixels.size(); ++i) {
        different += isNear(below.pixels[i], before->pixels[i]) ? 0U : 1U;
    }
    EXPECT_EQ(different, 0U);
}

TEST_P(X11Capture, IsTransparentWhereThereIsNoScreen) {
    auto options = with(GetParam());
    options.screens = {{300, 200, 500, 400}, {0, 0, 300, 300}};
    CaptureRig rig(options);
    rig.show({0, 0, 800, 600}, red);
    rig.show({-50, 250, 100, 100}, green);
    // The primary screen's corner is the origin.
    const Bitmap all = rig.captured({-310, -210, 820, 620});
    const auto at = [&](int x, int y) { return all.at(x + 10, y + 10); };
    EXPECT_EQ(at(-1, 100), transparent);
    EXPECT_EQ(at(0, 100), red);
    EXPECT_EQ(at(49, 299), green) << "half a window";
    EXPECT_EQ(at(50, 299), red);
    EXPECT_EQ(at(20, 300), transparent) << "on the root window, but on no screen";
    EXPECT_EQ(at(299, 100), red);
    EXPECT_EQ(at(300, 199), transparent);
    EXPECT_EQ(at(300, 200), red);
    EXPECT_EQ(at(799, 599), red);
    EXPECT_EQ(at(800, 599), transparent);
    // A window has pixels there all the same, once they are kept.
    rig.loop.skip(2);
    const auto half =
        rig.capture().captureBelow({-360, 40, 120, 120}, 0, {60, 60}, Interpolation::low);
    ASSERT_TRUE(half);
    for (const int x : {5, 29, 30, 54}) {
        EXPECT_EQ(half->at(x, 30), green) << x;
    }
    EXPECT_EQ(half->at(4, 30), transparent) << "before it";
    EXPECT_EQ(half->at(59, 59), red);
    for (const Rect& off : {Rect{5000, 5000, 20, 20}, Rect{-1e6, 0, 100, 100}}) {
        EXPECT_THAT(rig.captured(off).pixels, testing::Each(transparent));
    }
}

TEST_P(X11Capture, ShowsTheRootWindowsBackground) {
    CaptureRig rig(with(GetParam()));
    const auto root = rig.desktop.server().root();
    const auto plain = [](std::uint32_t color) { return GetParam() ? managersGrey : color; };
    rig.setRootBackground(green);
    rig.awaitPixel(700, 500, plain(green));
    rig.setRootBackground(blue);
    rig.awaitPixel(700, 500, plain(blue));
    // A wallpaper is repeated from the origin on.
    const auto tile = rig.pixmap({100, 100}, red);
    rig.fill(tile, {0, 0, 10, 10}, green);
    rig.setNumbers(root, "_XROOTPMAP_ID", XCB_ATOM_PIXMAP, {tile});
    expectPixels(rig, {{705, 505, green, "its corner"}, {710, 505, red, "beside it"}});
    const auto scaled =
        rig.capture().captureBelow({0, 0, 800, 600}, 0, {80, 60}, Interpolation::none);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->at(70, 50), green);
    EXPECT_EQ(scaled->at(71, 50), red);
    EXPECT_EQ(rig.pixel(705, 505), green) << "as before";
    // One that is gone leaves the background.
    xcb_free_pixmap(rig.xcb(), tile);
    rig.setNumbers(root, "_XROOTPMAP_ID", XCB_ATOM_PIXMAP, {tile});
    rig.awaitPixel(705, 505, plain(blue));
}

TEST_P(X11Capture, DrawsAtOtherSizes) {
    CaptureRig rig(with(GetParam()));
    rig.show({0, 0, 800, 600}, red);
    const auto window = rig.show({100, 100, 400, 400}, 0);
    // Columns of four pixels, black and white in turn.
    for (int x = 0; x < 400; x += 8) {
        rig.fill(window, {static_cast<double>(x), 0, 4, 400}, 0xFFFFFF);
    }
    rig.loop.settle();
    struct Case {
        const char* name;
        Rect area;
        IntSize size;
        Interpolation interpolation;
        std::vector<std::uint32_t> row;
    };
    constexpr std::uint32_t white = 0xFFFFFFFF;
    constexpr std::uint32_t black = 0xFF000000;
    constexpr std::uint32_t grey = 0xFF808080;
    const std::vector<Case> cases = {
        {"half, nearest",
         {100, 100, 16, 16},
         {8, 8},
         Interpolation::none,
         {white, white, black, black, white, white, black, black}},
        {"half, blended across the edges",
         {101, 100, 16, 16},
         {8, 8},
         Interpolation::low,
         {white, grey, black, grey, white, grey, black, grey}},
        {"double, nearest",
         {102, 100, 4, 4},
         {8, 8},
         Interpolation::none,
         {white, white, white, white, black, black, black, black}},
        {"double, blended",
         {102, 100, 4, 4},
         {8, 8},
         Interpolation::low,
         {white, white, white, 0xFFC0C0C0, 0xFF404040, black, black, black}},
        {"double, at the window's edge",
         {100, 100, 4, 4},
         {8, 8},
         Interpolation::low,
         {white, white, white, white, white, white, white, 0xFFC0C0C0}},
        {"between pixels, nearest",
         {102.6, 100.6, 4, 4},
         {4, 4},
         Interpolation::none,
         {white, black, black, black}},
        {"between pixels, blended",
         {102.5, 100, 4, 4},
         {4, 4},
         Interpolation::low,
         {white, grey, black, black}},
        {"past the window",
         {492, 450, 16, 16},
         {8, 8},
         Interpolation::low,
         {white, white, black, black, red, red, red, red}},
    };
    for (const Case& one : cases) {
        const auto bitmap = rig.capture().captureBelow(one.area, 0, one.size, one.interpolation);
        ASSERT_TRUE(bitmap) << one.name;
        ASSERT_EQ(bitmap->width, one.size.width) << one.name;
        ASSERT_EQ(bitmap->height, one.size.height) << one.name;
        for (int x = 0; x < one.size.width; ++x) {
            EXPECT_TRUE(isNear(bitmap->at(x, 1), one.row[static_cast<std::size_t>(x)], 2))
                << one.name << " " << x << std::hex << " " << bitmap->at(x, 1);
        }
    }
}

} // namespace
} // namespace lumetry::desktop
