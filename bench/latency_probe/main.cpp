// Takes pointer samples with the real session on the real desktop and says what each one cost.
//
//   lumetry_latency_probe    points "x y" on standard input, one a line, pixels of the root window
//
// Prints two lines for each point, for a first and a second sample there: microseconds of the
// update, microseconds of the repaint, accessibility requests, waits for them, round trips to the X
// server; microseconds of the update in accessibility, in captures and in windows and screens;
// whether something else is shown than before, and the class of that.

#include "deaf_monitors.h"
#include "platform/accessibility.h"
#include "platform/native/native_desktop.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "probe/probe_state.h"
#include "probe/role_bucket.h"
#include "rig/input_device.h"
#include "rig/x_connection.h"
#include "session/overlay.h"
#include "timed_accessibility.h"
#include "timed_screen.h"

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

/// The desktop's ports, those that take time with a watch on them, and deaf to what moves.
struct TimedPorts {
    explicit TimedPorts(const Platform& ports)
        : accessibility(ports.accessibility), windowServer(ports.windowServer),
          screenCapture(ports.screenCapture), platform{accessibility,        windowServer,
                                                       ports.pointer,        monitors,
                                                       ports.applications,   ports.fileSystem,
                                                       ports.runLoop,        ports.defaults,
                                                       ports.overlayWindows, screenCapture,
                                                       ports.screenLock} {}

    DeafMonitors monitors;
    TimedAccessibility accessibility;
    TimedWindowServer windowServer;
    TimedScreenCapture screenCapture;
    Platform platform;
};

struct Watches {
    double accessibility = 0; ///< microseconds
    double capture = 0;
    double windows = 0;
};

Watches watchesOf(const TimedPorts& ports) {
    return {ports.accessibility.watch().microseconds(), ports.screenCapture.watch().microseconds(),
            ports.windowServer.watch().microseconds()};
}

const char* bucketName(Bucket bucket) {
    switch (bucket) {
    case Bucket::text:
        return "text";
    case Bucket::control:
        return "control";
    case Bucket::input:
        return "input";
    case Bucket::collection:
        return "collection";
    case Bucket::container:
        return "container";
    case Bucket::graphic:
        return "graphic";
    case Bucket::generic:
        break;
    }
    return "generic";
}

/// The class of what is shown, told by the first word of its header.
const char* shownBucket(const Overlay& overlay) {
    const std::string& header = overlay.view().header;
    if (header.empty()) {
        return "nothing";
    }
    return header.starts_with("≈")
               ? "pixels"
               : bucketName(bucketFor("AX" + header.substr(0, header.find(' '))));
}

void sample(NativeDesktop& desktop, const TimedPorts& ports, Overlay& overlay) {
    // Longer than the session lets samples follow each other.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const RoundTrips before = desktop.roundTrips();
    const Watches watchesBefore = watchesOf(ports);
    const std::string headerBefore = overlay.view().header;
    const Rect targetBefore = overlay.view().targetRect;
    const auto begin = std::chrono::steady_clock::now();
    overlay.update();
    const auto updated = std::chrono::steady_clock::now();
    const Watches watches = watchesOf(ports);
    const RoundTrips after = desktop.roundTrips();
    const bool anew =
        overlay.view().header != headerBefore || overlay.view().targetRect != targetBefore;
    runQueuedTasks(desktop);
    const auto painted = std::chrono::steady_clock::now();
    std::cout << Microseconds(updated - begin).count() << ' '
              << Microseconds(painted - updated).count() << ' '
              << after.accessibilityRequests - before.accessibilityRequests << ' '
              << after.accessibilityWaits - before.accessibilityWaits << ' '
              << after.windowSystem - before.windowSystem << ' '
              << watches.accessibility - watchesBefore.accessibility << ' '
              << watches.capture - watchesBefore.capture << ' '
              << watches.windows - watchesBefore.windows << ' ' << anew << ' '
              << shownBucket(overlay) << '\n';
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
    const char* display = std::getenv("DISPLAY");
    const desktop::XConnection server(display != nullptr ? display : "");
    desktop::InputDevice input(server);
    native->platform().accessibility.createSystemWide().setMessagingTimeout(
        messagingTimeoutSeconds);
    const TimedPorts ports(native->platform());
    Overlay overlay(ports.platform, state);
    overlay.start();
    runQueuedTasks(*native);
    for (int x = 0, y = 0; std::cin >> x >> y;) {
        input.movePointer(x, y);
        sample(*native, ports, overlay);
        sample(*native, ports, overlay);
    }
    return 0;
}
