#include "plasma_rig.h"

#include "platform/overlay_window.h"
#include "rig/accessible_tree.h"
#include "rig/kwin_outputs.h"
#include "rig/x_connection.h"
#include "support/counting_rasterizer/counting_rasterizer.h"
#include "support/pictures/pictures.h"
#include "support/printing/printing.h"

#include <gmock/gmock.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint32_t background = 0xFF000000;
constexpr std::uint32_t pink = 0xFFFF3D8A;
constexpr Color faintPink = accentPink.withAlpha(0.07);
/// The faint pink over the background, a unit more or less.
constexpr std::uint32_t tinted = 0xFF12040A;

/// Shows an outline 2 points thick, and a mark.
class OutlineView final : public ContentView {
public:
    void draw(Canvas& canvas, const Rect& /*windowFrame*/) override {
        if (!target.isEmpty()) {
            canvas.fillRoundedRect(target, 4, faintPink);
            canvas.strokeRoundedRect(target, 4, accentPink, 2);
        }
        if (!mark.isEmpty()) {
            canvas.fillRoundedRect(mark, 0, white);
        }
    }

    Rect target; ///< view space, as is the mark
    Rect mark;
};

/// A stretch of pixels of one colour.
struct Run {
    int start = 0;
    int length = 0;

    friend bool operator==(const Run&, const Run&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Run& run) {
        return out << run.length << " from " << run.start;
    }
};

/// @param pixelAt the colour at a place along a line
template<class PixelAt>
std::vector<Run> runsOf(std::uint32_t color, int length, PixelAt pixelAt) {
    std::vector<Run> runs;
    for (int place = 0; place < length; ++place) {
        if (pixelAt(place) != color) {
            continue;
        }
        if (runs.empty() || runs.back().start + runs.back().length != place) {
            runs.push_back({place, 0});
        }
        ++runs.back().length;
    }
    return runs;
}

std::vector<Run> runsInRow(const Bitmap& picture, int row, std::uint32_t color) {
    return runsOf(color, picture.width, [&](int x) { return picture.at(x, row); });
}

std::vector<Run> runsInColumn(const Bitmap& picture, int column, std::uint32_t color) {
    return runsOf(color, picture.height, [&](int y) { return picture.at(column, y); });
}

bool isBlank(const Bitmap& picture) {
    return std::ranges::all_of(picture.pixels,
                               [](std::uint32_t pixel) { return pixel == background; });
}

/// Whether this process shares pixels with the compositor.
bool holdsPixels() {
    std::ifstream maps("/proc/self/maps");
    const std::string text(std::istreambuf_iterator<char>(maps), {});
    return text.find("lumetry-overlay") != std::string::npos;
}

struct OverlayRig : PlasmaRig {
    explicit OverlayRig(const KwinOptions& options) : PlasmaRig(options) {
        Rect all = Rect::null();
        for (const Screen& screen : wayland().screens()) {
            all = unite(all, screen.frame);
        }
        window = wayland().overlayWindows(rasterizer).makeWindow(all, {});
        window->setContentView(view);
    }

    /// Runs until the screen shows that.
    template<class Condition>
    [[nodiscard]] bool shows(Condition condition, std::size_t output = 0) {
        return loop.runUntil([&] { return condition(desktop.screenshot(output)); });
    }
    [[nodiscard]] bool showsAt(int x, int y, std::uint32_t color, std::size_t output = 0) {
        return shows([&](const Bitmap& picture) { return isNear(picture.at(x, y), color); },
                     output);
    }
    /// The outline has the whole pixels that come nearest, all of them entirely, on all sides.
    void expectCrispOutline(double scale, std::size_t output = 0) {
        const auto pixels = [scale](double points) {
            return static_cast<int>(std::floor(points * scale + 0.5));
        };
        const int thickness = pixels(2);
        const int middle = pixels(300); // across as well as down
        ASSERT_TRUE(showsAt(pixels(99), middle, pink, output));
        const Bitmap picture = desktop.screenshot(output);
        const int end = static_cast<int>(std::ceil(501 * scale - 0.5));
        EXPECT_EQ(runsInRow(picture, middle, pink),
                  (std::vector<Run>{{pixels(99), thickness}, {end - thickness, thickness}}));
        const int bottom = static_cast<int>(std::ceil(451 * scale - 0.5));
        EXPECT_EQ(runsInColumn(picture, middle, pink),
                  (std::vector<Run>{{pixels(149), thickness}, {bottom - thickness, thickness}}));
        EXPECT_EQ(picture.at(pixels(99) - 1, middle), background);
        EXPECT_TRUE(isNear(picture.at(pixels(99) + thickness, middle), tinted));
        EXPECT_TRUE(isNear(picture.at(end - thickness - 1, middle), tinted));
        EXPECT_EQ(picture.at(end, middle), background);
    }
    /// On a screen of 800 × 600: 100 to 500 across, 150 to 450 down.
    static constexpr Rect outlined = {100, 150, 400, 300};

    CountingRasterizer rasterizer;
    OutlineView view;
    std::unique_ptr<OverlayWindow> window;
};

class PlasmaOverlay : public testing::Test {
protected:
    void SetUp() override {
        if (const auto problem = KwinDesktop::problem()) {
            GTEST_SKIP() << *problem;
        }
    }
};

class PlasmaOverlayAt : public PlasmaOverlay, public testing::WithParamInterface<double> {};

INSTANTIATE_TEST_SUITE_P(Scales, PlasmaOverlayAt, testing::Values(1, 1.25, 1.5, 2),
                         [](const auto& test) {
                             return std::to_string(std::lround(test.param * 100)) + "Percent";
                         });

TEST_P(PlasmaOverlayAt, ShowsLinesOnWholePixels) {
    const double scale = GetParam();
    OverlayRig rig({.width = 800, .height = 600, .scale = scale});
    EXPECT_EQ(rig.wayland().screens(),
              (std::vector<Screen>{{{0, 0, 800, 600}, {0, 0, 800, 600}, scale}}));
    rig.view.target = OverlayRig::outlined;
    rig.window->orderFrontRegardless();
    rig.expectCrispOutline(scale);

    // What has moved away leaves nothing behind, in neither buffer.
    const auto left = static_cast<int>(100 * scale);
    const auto middle = static_cast<int>(300 * scale);
    for (const double x : {300.0, 350.0, 300.0}) {
        rig.view.target = {x, 150, 400, 300};
        rig.window->setNeedsDisplay();
        ASSERT_TRUE(rig.showsAt(static_cast<int>(x * scale), middle, pink));
        EXPECT_TRUE(rig.showsAt(left, middle, background));
    }

    rig.window->orderOut();
    EXPECT_TRUE(rig.shows(isBlank));
    EXPECT_FALSE(holdsPixels());

    // Shown again with less, none of the old drawing comes back.
    rig.view.target = {};
    rig.view.mark = {20, 560, 20, 20};
    rig.window->orderFrontRegardless();
    EXPECT_TRUE(
        rig.showsAt(static_cast<int>(30 * scale), static_cast<int>(30 * scale), 0xFFFFFFFF));
    EXPECT_TRUE(rig.showsAt(left, middle, background));
}

/// What the compositor was told, as the client library logs it.
struct Told {
    int commits = 0;
    double damaged = 0; ///< pixels

    explicit Told(const std::string& log) {
        std::istringstream lines(log);
        for (std::string line; std::getline(lines, line);) {
            int width = 0;
            int height = 0;
            const auto damage = line.find(".damage_buffer(");
            if (damage != std::string::npos &&
                std::sscanf(line.c_str() + damage, ".damage_buffer(%*d, %*d, %d, %d)", &width,
                            &height) == 2) {
                damaged += static_cast<double>(width) * height;
            }
            commits += line.find(".commit(") != std::string::npos ? 1 : 0;
        }
    }
};

TEST_F(PlasmaOverlay, TellsOnlyWhatHasChanged) {
    setenv("WAYLAND_DEBUG", "client", 1);
    OverlayRig rig({.width = 800, .height = 600, .outputs = 2});
    rig.view.target = {10, 10, 780, 580};
    rig.window->orderFrontRegardless();
    ASSERT_TRUE(rig.showsAt(9, 300, pink));
    rig.loop.settle();
    const auto computed = rig.rasterizer.takeCount();
    EXPECT_GT(computed, 0U);
    EXPECT_LT(computed, 800U * 600U / 4);

    testing::internal::CaptureStderr();
    rig.view.mark = {20, 20, 100, 20};
    rig.window->setNeedsDisplay();
    EXPECT_TRUE(rig.showsAt(30, 570, 0xFFFFFFFF));
    rig.loop.settle();
    const Told mark(testing::internal::GetCapturedStderr());
    EXPECT_EQ(mark.commits, 1);
    EXPECT_GE(mark.damaged, 100 * 20);
    EXPECT_LE(mark.damaged, 144 * 64);

    testing::internal::CaptureStderr();
    rig.window->setNeedsDisplay();
    rig.loop.settle();
    const Told nothing(testing::internal::GetCapturedStderr());
    EXPECT_EQ(nothing.commits, 0);
}

TEST_F(PlasmaOverlay, FollowsTheOutputs) {
    OverlayRig rig({.width = 1200, .height = 900, .outputs = 2});
    const auto frames = [&] {
        std::vector<Rect> all;
        for (const Screen& screen : rig.wayland().screens()) {
            all.push_back(screen.frame);
        }
        return all;
    };
    int changes = 0;
    const Token token = rig.wayland().onScreenChange([&] { ++changes; });
    ASSERT_THAT(frames(), ElementsAre(Rect{0, 0, 1200, 900}, Rect{1200, 0, 1200, 900}));
    rig.view.target = {1300, 450, 400, 300};
    rig.window->orderFrontRegardless();
    rig.expectCrispOutline(1, 1);
    EXPECT_TRUE(isBlank(rig.desktop.screenshot(0)));

    setOutputScale(rig.desktop.socket(), 1, 1.5);
    rig.loop.requireUntil("another scale", [&] { return changes > 0; });
    EXPECT_THAT(frames(), ElementsAre(Rect{0, 0, 1200, 900}, Rect{1200, 300, 800, 600}));
    rig.expectCrispOutline(1.5, 1);

    // The window stays where it is when another screen becomes the primary one.
    setOutputOrder(rig.desktop.socket(), {1, 0});
    rig.loop.requireUntil("another primary screen", [&] {
        return frames() == std::vector<Rect>{{0, 0, 800, 600}, {-1200, -300, 1200, 900}};
    });
    EXPECT_EQ(rig.window->frame(), (Rect{-1200, -300, 2400, 900}));
    rig.window->setNeedsDisplay();
    rig.loop.settle();
    rig.expectCrispOutline(1.5, 1);

    setOutputEnabled(rig.desktop.socket(), 1, false);
    rig.loop.requireUntil("an output to go", [&] { return frames().size() == 1; });
    rig.loop.settle();
    EXPECT_TRUE(isBlank(rig.desktop.screenshot(0)));
    setOutputEnabled(rig.desktop.socket(), 1, true);
    rig.loop.requireUntil("an output to come", [&] { return frames().size() == 2; });
    rig.expectCrispOutline(1.5, 1);
}

TEST_F(PlasmaOverlay, StaysUprightOnATurnedOutput) {
    OverlayRig rig({.width = 1200, .height = 900});
    rig.view.target = {100, 450, 400, 300};
    rig.window->orderFrontRegardless();
    constexpr int transforms = 8;
    for (int transform = 1; transform <= transforms; ++transform) {
        // At the end it is as it was in the beginning.
        const bool lies = transform % 2 == 1;
        SCOPED_TRACE(transform);
        setOutputTransform(rig.desktop.socket(), 0, transform % transforms);
        const Rect frame = lies ? Rect{0, 0, 900, 1200} : Rect{0, 0, 1200, 900};
        rig.loop.requireUntil("the output to turn",
                              [&] { return rig.wayland().screens().front().frame == frame; });
        // From the top it is as far away as before.
        rig.view.target = {100, frame.height - 450, 400, 300};
        rig.window->setFrame(frame);
        rig.window->setNeedsDisplay();
        rig.loop.settle();
        rig.expectCrispOutline(1);
    }
}

TEST_F(PlasmaOverlay, ComesAboveAnX11MenuWhenAsked) {
    OverlayRig rig({.width = 800, .height = 600, .xwayland = true});
    rig.view.target = OverlayRig::outlined;
    rig.window->orderFrontRegardless();
    ASSERT_TRUE(rig.showsAt(99, 300, pink));
    const XConnection server(rig.desktop.environment().at("DISPLAY"));
    const xcb_window_t menu = xcb_generate_id(server.get());
    const std::array<std::uint32_t, 2> values = {0x00AA00, 1}; // its colour, and unmanaged
    xcb_create_window(server.get(), XCB_COPY_FROM_PARENT, menu, server.root(), 50, 250, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values.data());
    xcb_map_window(server.get(), menu);
    server.sync();
    ASSERT_TRUE(rig.showsAt(99, 300, 0xFF00AA00));
    rig.window->orderFrontRegardless();
    EXPECT_TRUE(rig.showsAt(99, 300, pink));
    EXPECT_TRUE(rig.showsAt(60, 300, 0xFF00AA00));
    rig.loop.settle();
    EXPECT_TRUE(rig.showsAt(300, 300, tinted)) << "once, and not twice";
}

TEST_F(PlasmaOverlay, SaysOnceThatTheCompositorHasGone) {
    OverlayRig rig({.width = 800, .height = 600});
    int losses = 0;
    rig.wayland().onConnectionLost([&] { ++losses; });
    rig.view.target = OverlayRig::outlined;
    rig.window->orderFrontRegardless();
    ASSERT_TRUE(rig.showsAt(99, 300, pink));
    rig.desktop.stopCompositor();
    rig.loop.requireUntil("the loss", [&] { return losses > 0; });
    rig.window->setNeedsDisplay();
    rig.window->orderOut();
    rig.window->orderFrontRegardless();
    rig.loop.settle();
    EXPECT_EQ(losses, 1);
}

TEST_F(PlasmaOverlay, RefusesACompositorWithoutLayers) {
    PlasmaRig rig({.width = 800, .height = 600});
    rig.closeWayland();
    const auto socket = rig.desktop.environment().at("XDG_RUNTIME_DIR") + "/plain";
    const auto weston = rig.desktop.start(
        {"weston", "--backend=headless-backend.so", "--no-config", "--socket=plain"});
    setenv("WAYLAND_DISPLAY", socket.c_str(), 1);
    std::string problem;
    rig.loop.requireUntil("weston to answer", [&] {
        EXPECT_FALSE(WaylandDesktop::open(rig.loop, rig.loop, problem));
        return problem.find("does not answer") == std::string::npos;
    });
    EXPECT_THAT(problem, HasSubstr("layer-shell"));
    setenv("WAYLAND_DISPLAY", "/nowhere", 1);
    EXPECT_FALSE(WaylandDesktop::open(rig.loop, rig.loop, problem));
    EXPECT_THAT(problem, HasSubstr("/nowhere"));
}

TEST_F(PlasmaOverlay, LetsClicksThrough) {
    OverlayRig rig({.width = 1600, .height = 1000});
    const auto factory = rig.desktop.start({"gtk3-widget-factory"});
    const AccessibleTree tree(rig.desktop.accessibilityBusAddress());
    const auto button = tree.waitFor("gtk3-widget-factory", "toggle button", "togglebutton");
    // In the corner of the screen, where the places in the window are those on the screen.
    rig.desktop.input().pressKey(KEY_LEFTMETA);
    rig.desktop.input().typeKey(KEY_PAGEUP);
    rig.desktop.input().releaseKey(KEY_LEFTMETA);
    const auto frame = tree.waitFor("gtk3-widget-factory", "frame", "");
    rig.loop.requireUntil("a maximised window", [&] {
        return frame.extents() == Rect{0, 0, 1600, 1000};
    });
    const Rect place = button.extents().value();
    const bool checked = button.is(AccessibleState::checked);
    rig.view.target = flipped(place, 1000);
    rig.window->orderFrontRegardless();
    ASSERT_TRUE(rig.showsAt(static_cast<int>(place.minX()), static_cast<int>(place.midY()), pink));
    rig.desktop.input().movePointer({place.midX(), place.midY()});
    rig.desktop.input().click();
    EXPECT_TRUE(rig.loop.runUntil([&] { return button.is(AccessibleState::checked) != checked; }));
}

} // namespace
} // namespace lumetry::desktop
