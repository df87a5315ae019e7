#include "plasma_rig.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace lumetry::desktop {

PlasmaRig::PlasmaRig(const KwinOptions& options) : desktop(options) {
    setenv("WAYLAND_DISPLAY", desktop.socket().c_str(), 1);
    std::string problem;
    wayland_ = WaylandDesktop::open(loop, loop, problem);
    if (!wayland_) {
        throw std::runtime_error(problem);
    }
}

} // namespace lumetry::desktop
