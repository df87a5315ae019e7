#include "app/app_delegate.h"
#include "app/status_menu.h"
#include "app/views/application_icon.h"
#include "app/views/control_panel.h"
#include "onboarding/views/onboarding_widget.h"
#include "platform/native/shell/native_shell.h"
#include "probe/probe_state.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

int main(int given, char** argv) {
    int argc = 1; // no arguments are read, those of libraries included
    if (given > argc) {
        std::cerr << "lumetry: arguments are not read; \"man lumetry\" says how it is used\n";
    }
    lumetry::ProbeState state;
    state.lumetryPID = getpid();
    std::string problem;
    const auto shell = lumetry::NativeShell::open(argc, argv, problem);
    if (!shell) {
        if (!problem.empty()) {
            std::cerr << "lumetry: " << problem << '\n';
        }
        return problem.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    lumetry::setApplicationIcon(lumetry::statusBarIcon());
    lumetry::AppDelegate delegate(
        shell->platform(), state,
        {[](lumetry::OnboardingActions& actions) { return lumetry::makeOnboardingWindow(actions); },
         [](lumetry::ControlPanelActions actions, const lumetry::TemplateImage& icon) {
             return lumetry::makeControlPanel(std::move(actions), icon);
         }});
    shell->platform().application.setActivationPolicy(lumetry::ActivationPolicy::accessory);
    return shell->run(delegate);
}
