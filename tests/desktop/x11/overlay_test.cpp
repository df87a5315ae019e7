#include "x11_rig.h"

#include "platform/linux/x11/connection/reply.h"
#include "platform/overlay_window.h"
#include "rig/monitors.h"
#include "rig/screenshot.h"
#include "support/counting_rasterizer/counting_rasterizer.h"
#include "support/pictures/pictures.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

namespace lumetry::desktop {
namespace {

constexpr std::uint32_t background = 0xFF336699;
constexpr std::uint32_t pink = 0xFFFF3D8A;
constexpr Color faintPink = accentPink.withAlpha(0.07);
/// The faint pink over the background, a unit more or less.
constexpr std::uint32_t tinted = 0xFF416398;

/// Shows an outline, and a text with a mark before it on a plate.
class ListView final : public ContentView {
public:
    void draw(Canvas& canvas, const Rect& windowFrame) override {
        ++draws;
        frame = windowFrame;
        if (!target.isEmpty()) {
            canvas.fillRoundedRect(target, 4, faintPink);
            canvas.strokeRoundedRect(target, 4, accentPink, 2);
        }
        if (!text.empty()) {
            canvas.fillRoundedRect({20, 20, 200, 40}, 9, white);
            canvas.fillRoundedRect({30, 30, 10, 20}, 0, accentPink);
            canvas.drawText(text, {50, 30}, {FontFamily::system, 13}, accentPink);
        }
    }

    Rect target;
    std::string text;
    Rect frame;
    int draws = 0;
};

struct OverlayRig : X11Rig {
    explicit OverlayRig(bool withCompositor, int depth = 24)
        : X11Rig(Options{.compositor = withCompositor, .depth = depth}),
          tolerance(depth < 24 ? 8 : 1) {
        const auto below = foreignWindow({0, 0, 800, 600}, {.color = background});
        map(below);
        window = x11().overlayWindows(rasterizer).makeWindow({0, 0, 800, 600}, {});
        window->setContentView(view);
    }

    [[nodiscard]] std::uint32_t pixel(double x, double y) const {
        return screenshot(desktop.server(), {x, y, 1, 1}).at(0, 0);
    }
    /// Runs until the pixel of the screen is that colour, as near as the screen has it.
    [[nodiscard]] bool showsAt(double x, double y, std::uint32_t color) {
        return loop.runUntil([&] { return isNear(pixel(x, y), color, tolerance); });
    }
    [[nodiscard]] std::optional<std::string> texts() const {
        return desktop.server().textProperty(window->windowNumber(), "_LUMETRY_TEXT");
    }
    void show() {
        window->orderFrontRegardless();
        loop.requireUntil("a drawing", [&] { return texts().has_value(); });
    }

    int tolerance; ///< of a colour's components
    CountingRasterizer rasterizer;
    ListView view;
    std::unique_ptr<OverlayWindow> window;
};

class X11Overlay : public testing::TestWithParam<bool> {};

INSTANTIATE_TEST_SUITE_P(Compositing, X11Overlay, testing::Bool(),
                         [](const auto& test) { return test.param ? "With" : "Without"; });

struct ScreenCase {
    int depth;
    bool compositor;
};

class X11OverlayOn : public testing::TestWithParam<ScreenCase> {};

INSTANTIATE_TEST_SUITE_P(Screens, X11OverlayOn,
                         testing::Values(ScreenCase{24, true}, ScreenCase{24, false},
                                         ScreenCase{16, true}, ScreenCase{16, false},
                                         ScreenCase{30, true}, ScreenCase{30, false}),
                         [](const auto& test) {
                             return std::to_string(test.param.depth) + "Bits" +
                                    (test.param.compositor ? "Composited" : "");
                         });

TEST_P(X11OverlayOn, ShowsTheDrawingOverWhatLiesBelow) {
    const auto [depth, compositor] = GetParam();
    OverlayRig rig(compositor, depth);
    const std::uint32_t inside = compositor ? tinted : background;
    rig.view.target = {100, 100, 400, 300}; // on the screen 200 to 500 from the top
    rig.view.text = "12 × 7";
    rig.show();
    EXPECT_EQ(rig.texts(), "12 × 7\n");
    EXPECT_EQ(rig.view.frame, (Rect{0, 0, 800, 600}));
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
    EXPECT_TRUE(rig.showsAt(100, 350, pink));
    EXPECT_TRUE(rig.showsAt(300, 350, inside));
    EXPECT_TRUE(rig.showsAt(600, 350, background));
    EXPECT_TRUE(rig.showsAt(24, 545, 0xFFFFFFFF));
    EXPECT_TRUE(rig.showsAt(33, 560, pink));

    // What has moved away leaves nothing behind.
    rig.view.target = {300, 100, 400, 300};
    rig.window->setNeedsDisplay();
    EXPECT_TRUE(rig.showsAt(699, 350, pink));
    EXPECT_TRUE(rig.showsAt(100, 350, background));
    EXPECT_TRUE(rig.showsAt(200, 350, background));
    EXPECT_TRUE(rig.showsAt(600, 350, inside));

    rig.window->orderOut();
    EXPECT_TRUE(rig.showsAt(699, 350, background));
    EXPECT_TRUE(rig.showsAt(33, 560, background));
    EXPECT_FALSE(rig.texts());

    // Shown again with less, none of the old drawing comes back.
    rig.view.target = {};
    rig.view.text = "again";
    rig.show();
    EXPECT_EQ(rig.texts(), "again\n");
    EXPECT_TRUE(rig.showsAt(33, 560, pink));
    EXPECT_TRUE(rig.showsAt(699, 350, background));
}

TEST_P(X11Overlay, ComputesEdgesNotAreas) {
    OverlayRig rig(GetParam());
    rig.view.target = {10, 10, 780, 580};
    rig.show();
    rig.loop.settle();
    const auto all = rig.rasterizer.takeCount();
    EXPECT_GT(all, 0U);
    EXPECT_LT(all, 800U * 600U / 4);
    rig.view.text = "more";
    rig.window->setNeedsDisplay();
    rig.loop.requireUntil("the text", [&] { return rig.texts() == "more\n"; });
    rig.loop.settle();
    // The tiles around the text, once, and a sample of each plain colour.
    EXPECT_LE(rig.rasterizer.takeCount(), 208U * 48U + 8U);
    const int draws = rig.view.draws;
    for (int i = 0; i < 3; ++i) {
        rig.window->setNeedsDisplay();
    }
    rig.loop.settle();
    EXPECT_EQ(rig.view.draws, draws + 1);
    EXPECT_EQ(rig.rasterizer.takeCount(), 0U) << "nothing has changed";
}

TEST_P(X11Overlay, LetsThePointerThroughAndTakesNoFocus) {
    OverlayRig rig(GetParam());
    rig.view.target = {0, 0, 800, 600};
    rig.show();
    const auto& server = rig.desktop.server();
    rig.desktop.input().movePointer(1, 1);
    const x11::Reply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(rig.xcb(), xcb_query_pointer(rig.xcb(), server.root()), nullptr));
    const x11::Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(rig.xcb(), xcb_get_input_focus(rig.xcb()), nullptr));
    EXPECT_NE(pointer->child, rig.window->windowNumber());
    EXPECT_NE(pointer->child, XCB_NONE);
    EXPECT_NE(focus->focus, rig.window->windowNumber());
    EXPECT_EQ(rig.x11().desktopWindows().windowAt({1, 1}, std::nullopt)->id, pointer->child);
    EXPECT_EQ(rig.x11().windowServer().onScreenWindows()->size(), 1U);
}

TEST_P(X11Overlay, StaysAboveWindowsThatComeLater) {
    OverlayRig rig(GetParam());
    rig.view.target = {100, 100, 400, 300};
    rig.show();
    ASSERT_TRUE(rig.showsAt(300, 200, pink));
    const auto menu =
        rig.foreignWindow({250, 150, 100, 100}, {.overrideRedirect = true, .color = 0x00AA00});
    rig.map(menu);
    EXPECT_TRUE(rig.showsAt(300, 160, 0xFF00AA00));
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
    rig.raise(menu);
    rig.loop.settle();
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
    // Hidden and shown again it comes back where it was, below.
    rig.unmap(menu);
    rig.map(menu);
    EXPECT_TRUE(rig.showsAt(300, 160, 0xFF00AA00));
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
}

TEST(X11OverlayWindow, DoesNotFightForTheTop) {
    OverlayRig rig(false);
    rig.show();
    const auto rival = rig.ownWindow({0, 0, 10, 10}, {.overrideRedirect = true});
    rig.map(rival);
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(rig.xcb(), rig.desktop.server().root(), XCB_CW_EVENT_MASK, &mask);
    rig.desktop.server().sync();
    int raises = 0;
    // The rival comes back each time the overlay goes above it.
    const auto react = [&] {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(rig.xcb())}) {
            const auto& configure = x11::eventAs<xcb_configure_notify_event_t>(*event);
            if (x11::typeOf(*event) == XCB_CONFIGURE_NOTIFY &&
                configure.window == rig.window->windowNumber()) {
                ++raises;
                rig.raise(rival);
            }
        }
    };
    rig.raise(rival);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    while (std::chrono::steady_clock::now() < end) {
        rig.loop.turn(std::chrono::milliseconds(5));
        react();
    }
    EXPECT_GT(raises, 0);
    EXPECT_LT(raises, 12);
}

TEST(X11OverlayWindow, ChangesWithTheCompositingManager) {
    OverlayRig rig(false);
    rig.view.target = {100, 100, 400, 300};
    rig.show();
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
    EXPECT_TRUE(rig.showsAt(300, 350, background));
    {
        const auto compositor =
            rig.desktop.start({"picom", "--backend", "xrender", "--config", "/dev/null"});
        EXPECT_TRUE(rig.showsAt(300, 350, tinted));
        EXPECT_TRUE(rig.showsAt(300, 200, pink));
        EXPECT_TRUE(rig.showsAt(600, 350, background));
    }
    EXPECT_TRUE(rig.showsAt(300, 350, background));
    EXPECT_TRUE(rig.showsAt(300, 200, pink));
    EXPECT_TRUE(rig.showsAt(600, 350, background));
}

TEST(X11OverlayWindow, FollowsItsFrame) {
    X11Rig rig({.screens = {{300, 0, 500, 400}, {0, 0, 300, 600}}});
    CountingRasterizer rasterizer;
    ListView view;
    // Screen space begins at the lower left of the primary screen, which is at (300, 400).
    const Rect whole = {-300, -200, 800, 600};
    const auto window = rig.x11().overlayWindows(rasterizer).makeWindow(whole, {});
    window->setContentView(view);
    view.text = "x";
    window->orderFrontRegardless();
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return screenshot(rig.desktop.server(), {33, 560, 1, 1}).at(0, 0) == pink;
    }));
    window->setFrame({0, 0, 500, 400});
    EXPECT_EQ(window->frame(), (Rect{0, 0, 500, 400}));
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return screenshot(rig.desktop.server(), {333, 360, 1, 1}).at(0, 0) == pink &&
               screenshot(rig.desktop.server(), {33, 560, 1, 1}).at(0, 0) != pink;
    }));
    // The window stays where it is when another screen becomes the primary one, whose lower left
    // is now at (0, 600).
    arrangeMonitors(rig.desktop.server(), {{0, 0, 300, 600}, {300, 0, 500, 400}});
    EXPECT_TRUE(rig.loop.runUntil([&] { return window->frame() == Rect{300, 200, 500, 400}; }));
}

TEST(X11OverlayWindow, LeavesNothingInTheServer) {
    OverlayRig rig(false);
    rig.view.target = {100, 100, 400, 300};
    rig.view.text = "text";
    std::map<xcb_atom_t, std::uint32_t> counts;
    for (int round = 0; round < 20; ++round) {
        rig.show();
        rig.window->orderOut();
        rig.loop.settle(std::chrono::milliseconds(1));
        rig.window = rig.x11().overlayWindows(rig.rasterizer).makeWindow({0, 0, 800, 600}, {});
        rig.window->setContentView(rig.view);
        if (round == 1) {
            counts = rig.resourceCounts();
        }
    }
    EXPECT_EQ(rig.resourceCounts(), counts);
}

} // namespace
} // namespace lumetry::desktop
