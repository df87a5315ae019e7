#pragma once

#include "platform/linux/x11/desktop.h"
#include "rig/private_desktop.h"
#include "rig/processes/file_descriptor.h"
#include "support/fake_linux/poll_loop.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::desktop {

using test::PollLoop;

struct WindowOptions {
    bool overrideRedirect = false;
    bool inputOnly = false;
    std::uint32_t color = 0x336699; ///< 0xRRGGBB
    xcb_window_t parent = XCB_NONE; ///< none: the root window
    int border = 0;                 ///< in pixels, black
    bool translucent = false;       ///< the colour is 0xAARRGGBB, premultiplied
};

/// Another process that has windows: whose a window is shows from the connection that made it.
class OtherProcess {
public:
    OtherProcess();
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    [[nodiscard]] xcb_window_t makeWindow(const std::string& display, const Rect& rect,
                                          const WindowOptions& options) const;
    [[nodiscard]] pid_t pid() const { return pid_; }

private:
    FileDescriptor orders_;
    pid_t pid_ = -1;
};

/// A private X server with the backend under test connected to it, and another process that has
/// windows. Neither session bus nor accessibility is used.
class X11Rig {
public:
    struct Options {
        bool windowManager = false;
        bool compositor = false;
        std::vector<Rect> screens = {};
        std::vector<std::string> serverArguments = {};
        int depth = 24;
    };

    X11Rig() : X11Rig(Options{}) {}
    explicit X11Rig(const Options& options);

    [[nodiscard]] X11Desktop& x11() { return *x11_; }
    [[nodiscard]] xcb_connection_t* xcb() const { return desktop.server().get(); }
    void closeX11() { x11_.reset(); }
    void openX11();

    /// Another process's window; not mapped.
    [[nodiscard]] xcb_window_t foreignWindow(const Rect& rect,
                                             const WindowOptions& options = {}) const;
    /// A window of this very process; not mapped.
    [[nodiscard]] xcb_window_t ownWindow(const Rect& rect, const WindowOptions& options = {}) const;
    [[nodiscard]] pid_t foreignPid() const { return other_.pid(); }

    void map(xcb_window_t window) const;
    void unmap(xcb_window_t window) const;
    void destroy(xcb_window_t window) const;
    void raise(xcb_window_t window) const;
    void move(xcb_window_t window, const Rect& rect) const;
    void setNumbers(xcb_window_t window, std::string_view property, xcb_atom_t type,
                    const std::vector<std::uint32_t>& numbers) const;
    /// For properties that hold atoms.
    void setAtoms(xcb_window_t window, std::string_view property,
                  const std::vector<std::string_view>& names) const;
    void setText(xcb_window_t window, std::string_view property, std::string_view text) const;
    /// Lets the pointer through the window.
    void emptyInputShape(xcb_window_t window) const;

    /// How much of each kind of resource the server keeps for all other connections than the
    /// test's.
    [[nodiscard]] std::map<xcb_atom_t, std::uint32_t> resourceCounts() const;

    /// The windows on screen that belong to the other process, frontmost first.
    [[nodiscard]] std::vector<WindowInfo> foreignList();
    /// Runs until that many of the other process's windows are on the screen, and lists them.
    [[nodiscard]] std::vector<WindowInfo> waitForList(std::size_t count);

private:
    OtherProcess other_; // before this one has threads

public:
    PollLoop loop;
    PrivateDesktop desktop;

private:
    std::unique_ptr<X11Desktop> x11_;
};

} // namespace lumetry::desktop
