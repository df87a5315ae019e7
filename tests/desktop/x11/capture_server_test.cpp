#include "capture_rig.h"

#include "rig/screenshot.h"
#include "support/pictures/pictures.h"

#include <gmock/gmock.h>

#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace lumetry::desktop {
namespace {

TEST(X11ScreenCapture, IsAbsentForAreasThatAreNone) {
    CaptureRig rig;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Rect> areas = {
        {0, 0, 0, 10},        {0, 0, 10, -10},        {noNumber, 0, 10, 10}, {0, infinity, 10, 10},
        {0, 0, infinity, 10}, {0, 0, 10, noNumber},   {1e300, 0, 10, 10},    {0, -1e300, 10, 10},
        {0, 0, 1e300, 1e300}, {-1e300, 0, 2e300, 10}, Rect::null(),
    };
    for (const Rect& area : areas) {
        EXPECT_FALSE(rig.capture().captureBelow(area, 0)) << area.x << ' ' << area.width;
        EXPECT_FALSE(rig.capture().captureBelow(area, 0, {10, 10}, Interpolation::low))
            << area.x << ' ' << area.width;
    }
    EXPECT_FALSE(rig.capture().captureBelow({0, 0, 10, 10}, 0, {0, 10}, Interpolation::low));
    EXPECT_FALSE(rig.capture().captureBelow({0, 0, 10, 10}, 0, {10, -1}, Interpolation::low));
    EXPECT_FALSE(
        rig.capture().captureBelow({0, 0, 10, 10}, 0, {1 << 30, 1 << 30}, Interpolation::low));
    EXPECT_TRUE(rig.capture().captureBelow({0, 0, 1e6, 1e6}, 0, {400, 400}, Interpolation::low))
        << "a document longer than any screen";
}

struct ServerCase {
    const char* name;
    std::vector<std::string> arguments;
    int depth;
    int tolerance; ///< of a colour's components
    bool sharesMemory;

    friend std::ostream& operator<<(std::ostream& out, const ServerCase& each) {
        return out << each.name;
    }
};

class X11CaptureOn : public testing::TestWithParam<ServerCase> {};

INSTANTIATE_TEST_SUITE_P(
    Servers, X11CaptureOn,
    testing::Values(ServerCase{"Usual", {}, 24, 0, true},
                    ServerCase{"WithoutSharedMemory", {"-extension", "MIT-SHM"}, 24, 0, false},
                    ServerCase{"SixteenBits", {}, 16, 8, true},
                    ServerCase{"ThirtyBits", {}, 30, 0, true}),
    [](const auto& test) { return test.param.name; });

TEST_P(X11CaptureOn, WaitsOnceForACapture) {
    CaptureRig rig({.serverArguments = GetParam().arguments, .depth = GetParam().depth});
    const auto window = rig.show({0, 0, 800, 600}, red);
    rig.show({10, 10, 100, 100}, blue, {.translucent = true});
    ASSERT_TRUE(isNear(rig.pixel(200, 200), red, GetParam().tolerance));
    ASSERT_EQ(rig.pixel(50, 50), blue);
    rig.fill(window, {300, 300, 1, 1}, 0x00FF00);
    const std::size_t before = rig.x11().roundTrips();
    const auto square = rig.capture().captureBelow({200, 200, 300, 300}, 0);
    const auto element =
        rig.capture().captureBelow({0, 0, 800, 600}, 0, {400, 300}, Interpolation::low);
    EXPECT_LE(rig.x11().roundTrips() - before, 2U);
    const auto segment = rig.desktop.server().atom("ShmSeg");
    EXPECT_EQ(rig.resourceCounts().contains(segment), GetParam().sharesMemory);
    EXPECT_EQ(square->at(100, 100), 0xFF00FF00);
    EXPECT_TRUE(isNear(square->at(99, 100), red, GetParam().tolerance));
    EXPECT_TRUE(isNear(element->at(300, 200), red, GetParam().tolerance));
    EXPECT_EQ(element->at(30, 30), blue);
}

TEST(X11ScreenCapture, IsAbsentWithoutTheExtensionsItTakes) {
    for (const char* const extension : {"Composite", "RENDER"}) {
        CaptureRig rig({.serverArguments = {"-extension", extension}});
        EXPECT_FALSE(rig.x11().windowServer().preflightScreenCaptureAccess()) << extension;
        EXPECT_FALSE(rig.capture().captureBelow({0, 0, 10, 10}, 0)) << extension;
    }
}

TEST(X11ScreenCapture, MakesLargeOnesInPieces) {
    CaptureRig rig({.serverArguments = {"-screen", "0", "2000x1500x24"}});
    const auto window = rig.show({0, 0, 2000, 1500}, red);
    rig.fill(window, {0, 750, 2000, 750}, blue);
    const Bitmap all = rig.captured({0, 0, 2000, 1500});
    for (int y = 0; y < 1500; ++y) {
        ASSERT_EQ(all.at(1999, y), y < 750 ? red : blue) << y;
    }
}

TEST(X11ScreenCapture, LeavesNothingInTheServer) {
    CaptureRig rig;
    rig.show({0, 0, 800, 600}, red);
    rig.show({0, 0, 400, 400}, 0x80000080, {.translucent = true});
    rig.shape(rig.show({100, 100, 100, 100}, green), {{0, 0, 50, 50}});
    const auto capture = [&](int round) {
        const double side = 50 + round % 300;
        return rig.capture().captureBelow({side, side, side, side}, 0) &&
               rig.capture().captureBelow({0, 0, 2 * side, side}, 0, {100, 40 + round % 50},
                                          Interpolation::low);
    };
    // What is kept from one capture to the next goes when none has come for a while.
    const auto pause = [&] {
        rig.loop.settle();
        rig.loop.skip(60);
        rig.loop.settle();
        return rig.resourceCounts();
    };
    ASSERT_TRUE(capture(0));
    const auto active = rig.resourceCounts();
    const auto idle = pause();
    EXPECT_NE(idle, active);
    for (int round = 0; round < 500; ++round) {
        ASSERT_TRUE(capture(round));
    }
    EXPECT_EQ(rig.resourceCounts(), active);
    EXPECT_EQ(pause(), idle);
    EXPECT_EQ(rig.pixel(500, 500), red);
}

TEST(X11ScreenCapture, MakesWayForACompositingManager) {
    CaptureRig rig;
    rig.setRootBackground(green);
    rig.show({0, 0, 800, 300}, red);
    rig.show({0, 0, 100, 100}, 0x80000080, {.translucent = true});
    ASSERT_EQ(rig.pixel(50, 50), 0xFF000080);
    ASSERT_EQ(rig.pixel(500, 500), green);
    rig.startCompositor();
    EXPECT_TRUE(isNear(rig.pixel(50, 50), 0xFF661090));
    rig.awaitPixel(500, 500, 0xFF808080);
    EXPECT_TRUE(rig.loop.runUntil([&] {
        return isNear(screenshot(rig.desktop.server(), {50, 50, 1, 1}).at(0, 0), 0xFF661090);
    }));
    // And when it has gone.
    rig.stopCompositor();
    EXPECT_EQ(rig.pixel(50, 50), 0xFF000080);
    EXPECT_EQ(rig.pixel(500, 500), green);
    rig.loop.skip(60);
    rig.loop.settle();
    EXPECT_EQ(screenshot(rig.desktop.server(), {50, 50, 1, 1}).at(0, 0), 0xFF000080);
    EXPECT_EQ(screenshot(rig.desktop.server(), {500, 200, 1, 1}).at(0, 0), red);
}

} // namespace
} // namespace lumetry::desktop
