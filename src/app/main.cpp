#include "platform/accessibility.h"
#include "platform/native/native_desktop.h"
#include "platform/run_loop.h"
#include "probe/probe_state.h"
#include "session/overlay.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace {

using namespace lumetry;

/// Inspects until Escape ends it. There is no shell around the session yet, so that the program
/// ends with it.
int inspect(NativeDesktop& desktop, ProbeState& state) {
    Overlay overlay(desktop.platform(), state);
    overlay.onNeedsPermissions = [&] {
        std::cerr << "lumetry: " << desktop.trustProblem() << '\n';
    };
    overlay.onStop = [&] { desktop.quit(EXIT_SUCCESS); };
    overlay.start();
    if (!overlay.active()) {
        return EXIT_FAILURE;
    }
    const int status = desktop.run();
    overlay.onStop = nullptr;
    overlay.stop();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    ProbeState state;
    state.lumetryPID = getpid();
    std::string problem;
    const auto desktop = NativeDesktop::open(argc, argv, problem);
    if (!desktop) {
        std::cerr << "lumetry: " << problem << '\n';
        return EXIT_FAILURE;
    }
    desktop->platform().accessibility.createSystemWide().setMessagingTimeout(
        messagingTimeoutSeconds);
    return inspect(*desktop, state);
}
