#include "session_test.h"

#include <gmock/gmock.h>

#include <vector>

namespace lumetry {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr EventMask keyMask = 0x400;
constexpr EventMask pointerMask = 0x401020;
constexpr Event escape = {EventType::keyDown, 53};

using Lifecycle = SessionTest;

TEST_F(Lifecycle, WithoutTrustItAsksAndStaysOff) {
    desktop.accessibility.trusted = false;
    overlay->start(); // without anyone to tell
    int asked = 0;
    overlay->onNeedsPermissions = [&] { ++asked; };
    overlay->start();
    overlay->start();
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(overlay->active());
    EXPECT_THAT(desktop.eventMonitors.masks(), IsEmpty());
}

TEST_F(Lifecycle, StartShowsAtOnceWhatIsUnderThePointer) {
    desktop.launchElectron(9, "Chat");
    desktop.openWindow(9, {900, 0, 100, 100});
    EXPECT_FALSE(window().shown);

    overlay->start();
    EXPECT_TRUE(overlay->active());
    EXPECT_TRUE(window().shown);
    EXPECT_EQ(window().view, &view());
    EXPECT_THAT(desktop.eventMonitors.masks(), ElementsAre(keyMask, pointerMask));
    EXPECT_EQ(view().targetRect, inView(buttonFrame));
    EXPECT_TRUE(view().exitTag);
    EXPECT_GT(window().needsDisplay, 0);
    EXPECT_EQ(desktop.state.enhancedPIDs, std::set<pid_t>{9});
    EXPECT_TRUE(window().style.ignoresMouseEvents);
    EXPECT_EQ(window().style.level, 1000);
    EXPECT_EQ(window().style.collectionBehavior, 0x111U);

    overlay->stop();
    EXPECT_FALSE(overlay->active());
    EXPECT_FALSE(window().shown);
    EXPECT_FALSE(view().exitTag);
    EXPECT_THAT(desktop.eventMonitors.masks(), IsEmpty());
    EXPECT_TRUE(desktop.state.enhancedPIDs.empty());
    EXPECT_EQ(desktop.overlayWindows.made.size(), 1U);
}

TEST_F(Lifecycle, MissingPermissionToCaptureIsAskedForAndNoObstacle) {
    overlay->start();
    EXPECT_EQ(desktop.windowServer.captureRequests, 0);
    overlay->stop();
    desktop.windowServer.captureAllowed = false;
    overlay->start();
    EXPECT_EQ(desktop.windowServer.captureRequests, 1);
    EXPECT_TRUE(overlay->active());
}

TEST_F(Lifecycle, NothingIsShownOrReadOverALockedScreen) {
    desktop.screenLock.locked = true;
    desktop.windowServer.captureAllowed = false;
    overlay->start();
    EXPECT_TRUE(overlay->active());
    EXPECT_FALSE(window().shown);
    EXPECT_EQ(desktop.accessibility.totalReads(), 0);
    EXPECT_EQ(desktop.windowServer.captureRequests, 0);
    desktop.screenLock.change(false);
    EXPECT_TRUE(window().shown);
    EXPECT_EQ(desktop.windowServer.captureRequests, 1);
    EXPECT_EQ(view().targetRect, inView(buttonFrame)) << "without waiting for the pointer";

    desktop.screenLock.change(true);
    EXPECT_FALSE(window().shown);
    EXPECT_THAT(desktop.eventMonitors.masks(), IsEmpty()) << "what is typed is the locker's";
    const int reads = desktop.accessibility.totalReads();
    desktop.runLoop.advance(1);
    desktop.pointAt(onField);
    overlay->update();
    EXPECT_EQ(desktop.accessibility.totalReads(), reads);
    desktop.screenLock.change(false);
    EXPECT_TRUE(window().shown);
    EXPECT_EQ(view().targetRect, inView(fieldFrame));

    desktop.screenLock.change(true);
    overlay->stop();
    EXPECT_FALSE(desktop.screenLock.isWatched());
}

TEST_F(Lifecycle, StartingTwiceMonitorsOnce) {
    overlay->start();
    desktop.runLoop.advance(1);
    const int drawn = window().needsDisplay;
    overlay->start();
    EXPECT_THAT(desktop.eventMonitors.masks(), testing::UnorderedElementsAre(keyMask, pointerMask));
    EXPECT_EQ(window().needsDisplay, drawn);
}

TEST_F(Lifecycle, EscapeStopsOnTheNextTurn) {
    overlay->start();
    desktop.eventMonitors.fire({EventType::keyDown, 54});
    desktop.runLoop.advance(0);
    desktop.eventMonitors.fire(escape);
    EXPECT_TRUE(overlay->active()) << "the monitor was removed while it was being called";
    desktop.runLoop.advance(0);
    EXPECT_FALSE(overlay->active());
}

TEST_F(Lifecycle, NothingReachesASessionThatIsGone) {
    overlay->start();
    desktop.eventMonitors.fire(escape);
    overlay.reset();
    EXPECT_FALSE(window().alive);
    EXPECT_THAT(desktop.eventMonitors.masks(), IsEmpty());
    const int reads = desktop.accessibility.totalReads();
    desktop.runLoop.advance(0);
    hover(onField);
    EXPECT_EQ(desktop.accessibility.totalReads(), reads);
}

} // namespace
} // namespace lumetry
