// Takes pointer samples with the real session on the real desktop and says what each one cost.
//
//   lumetry_latency_probe    points "x y" on standard input, one a line, pixels of the root window
//
// Prints two lines for each point, the first for an element that was not under the pointer before,
// the second for the same one again: microseconds of the update, microseconds of the repaint,
// accessibility requests, waits for them, round trips to the X server.

#include "platform/accessibility.h"
#include "platform/native/native_desktop.h"
#include "platform/run_loop.h"
#include "probe/probe_state.h"
#include "session/overlay.h"
#include "support/real_desktop/input_device.h"
#include "support/real_desktop/x_connection.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

namespace {

using namespace lumetry;
using Microseconds = std::chrono::duration<double, std::micro>;

/// Runs what is queued on the main loop, such as the repaint.
void runQueuedTasks(NativeDesktop& desktop) {
    desktop.platform().runLoop.async([&] { desktop.quit(0); });
    (void)desktop.run();
}

void sample(NativeDesktop& desktop, Overlay& overlay) {
    // Longer than the session lets samples follow each other.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const RoundTrips before = desktop.roundTrips();
    const auto begin = std::chrono::steady_clock::now();
    overlay.update();
    const auto updated = std::chrono::steady_clock::now();
    const RoundTrips after = desktop.roundTrips();
    runQueuedTasks(desktop);
    const auto painted = std::chrono::steady_clock::now();
    std::cout << Microseconds(updated - begin).count() << ' '
              << Microseconds(painted - updated).count() << ' '
              << after.accessibilityRequests - before.accessibilityRequests << ' '
              << after.accessibilityWaits - before.accessibilityWaits << ' '
              << after.windowSystem - before.windowSystem << '\n';
}

} // namespace

int main(int argc, char** argv) {
    ProbeState state;
    state.lumetryPID = getpid();
    std::string problem;
    const auto native = NativeDesktop::open(argc, argv, problem);
    if (!native) {
        std::cerr << "lumetry_latency_probe: " << problem << '\n';
        return 1;
    }
    const desktop::XConnection server(std::getenv("DISPLAY"));
    desktop::InputDevice input(server);
    native->platform().accessibility.createSystemWide().setMessagingTimeout(
        messagingTimeoutSeconds);
    Overlay overlay(native->platform(), state);
    overlay.start();
    runQueuedTasks(*native);
    for (int x = 0, y = 0; std::cin >> x >> y;) {
        input.movePointer(x, y);
        sample(*native, overlay);
        sample(*native, overlay);
    }
    return 0;
}
