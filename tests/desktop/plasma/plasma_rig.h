#pragma once

#include "platform/linux/wayland/desktop.h"
#include "rig/kwin_desktop.h"
#include "support/fake_linux/poll_loop.h"

#include <memory>

namespace lumetry::desktop {

using test::PollLoop;

/// A private desktop under KWin with the backend under test connected to it.
class PlasmaRig {
public:
    explicit PlasmaRig(const KwinOptions& options);

    [[nodiscard]] WaylandDesktop& wayland() { return *wayland_; }
    void closeWayland() { wayland_.reset(); }

    KwinDesktop desktop;
    PollLoop loop;

private:
    std::unique_ptr<WaylandDesktop> wayland_;
};

} // namespace lumetry::desktop
