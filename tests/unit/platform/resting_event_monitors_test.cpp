#include "platform/resting_event_monitors.h"
#include "support/fake_platform/fake_input.h"
#include "support/fake_platform/fake_run_loop.h"

#include <gtest/gtest.h>

namespace lumetry {
namespace {

TEST(RestingEventMonitors, TellOnceMoreWhenThePointerHasStopped) {
    FakeEventMonitors monitors;
    FakeRunLoop loop;
    RestingEventMonitors resting(monitors, loop);
    int moves = 0;
    int keys = 0;
    Token token = resting.addGlobalMonitorForEvents(
        eventMask(EventType::mouseMoved) | eventMask(EventType::keyDown),
        [&](const Event& event) { ++(event.type == EventType::mouseMoved ? moves : keys); });
    constexpr int told = 10;
    for (int i = 0; i < told; ++i) {
        monitors.fire({EventType::mouseMoved});
        loop.advance(0.02);
    }
    EXPECT_EQ(moves, told); // it never rested
    loop.advance(0.1);
    EXPECT_EQ(moves, told + 1);
    monitors.fire({EventType::keyDown});
    loop.advance(10);
    EXPECT_EQ(moves, told + 1);
    EXPECT_EQ(keys, 1);
    monitors.fire({EventType::mouseMoved});
    token.reset();
    loop.advance(1);
    EXPECT_EQ(moves, told + 2); // nobody asks any more
}

} // namespace
} // namespace lumetry
