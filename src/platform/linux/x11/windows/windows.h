#pragma once

#include "platform/linux/windows/desktop_windows.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/windows/record.h"
#include "platform/linux/x11/windows/screens.h"
#include "platform/linux/x11/windows/table.h"
#include "platform/window_server.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry::x11 {

/// Answers what the program asks of the windows and screens.
class X11Windows final : public WindowServer, public DesktopWindows {
public:
    /// @param chosenScale device pixels for each point, whatever the desktop declares
    X11Windows(Connection& connection, std::optional<double> chosenScale);

    [[nodiscard]] std::optional<std::vector<WindowInfo>> onScreenWindows() override;
    [[nodiscard]] std::optional<std::uint32_t> activeWindow() override;
    [[nodiscard]] std::optional<std::string> windowName(std::uint32_t number) override;
    [[nodiscard]] std::vector<Screen> screens() override;
    [[nodiscard]] std::optional<Screen> mainScreen() override;
    [[nodiscard]] bool preflightScreenCaptureAccess() override;
    bool requestScreenCaptureAccess() override;
    void getShareableContent(std::function<void()> completion) override;

    [[nodiscard]] RootSpace rootSpace() override { return layout().space(); }
    [[nodiscard]] std::optional<DesktopWindow> windowAt(Point point,
                                                        std::optional<pid_t> pid) override;
    [[nodiscard]] ProcessWindows windowsOf(pid_t pid) override;

    [[nodiscard]] const ScreenLayout& layout() { return screens_.layout(); }
    /// Calls the handler when it is heard that points have become larger or smaller.
    [[nodiscard]] Token onScaleChange(std::function<void()> handler) {
        return screens_.onScaleChange(std::move(handler));
    }
    /// The windows whose pixels make up what the screen shows below a window, the topmost first,
    /// click-through ones included. Valid until the next event.
    /// @param above one of this program's windows; 0, or one that is hidden: everything that is not
    /// this program's
    [[nodiscard]] std::vector<const WindowRecord*> visibleBelow(xcb_window_t above);
    /// Where the screen shows a window, this program's own included. Root coordinates.
    [[nodiscard]] std::vector<Rect> occupied();
    /// Whether this program has a window on the screen, other than the overlay.
    [[nodiscard]] bool hasOwnOnScreen();
    /// The window that hides at least one screen with nothing but menus and the like above it, the
    /// way a screen locker's does: no window manager looks after it, and it takes the pointer.
    /// Never one of this program's. None when there is no such window.
    [[nodiscard]] xcb_window_t lockerOnTop();
    /// Whether the window hides a screen in that way, be it on top or not.
    [[nodiscard]] bool isLocker(xcb_window_t topLevel);
    /// Whether a child of the root, as such, belongs to this program.
    [[nodiscard]] bool isOwn(xcb_window_t topLevel);

private:
    /// What is on the screen, as of one version of the table.
    struct Visible {
        std::size_t version;
        std::vector<const WindowRecord*> windows;
    };
    /// The screens as of one version of the table, and of their layout.
    struct Described {
        std::size_t version;
        ScreenLayout layout;
        std::vector<Screen> screens;
    };

    [[nodiscard]] bool isOnScreen(const WindowRecord& window) const;
    [[nodiscard]] bool isOwn(const WindowRecord& window) const;
    [[nodiscard]] bool isLocker(const WindowRecord& window);
    /// Those on the screen, from the topmost down. Valid until the next event.
    [[nodiscard]] const std::vector<const WindowRecord*>& onScreen();
    [[nodiscard]] std::optional<Point> centreOfFocus();
    /// The window that keys go to; absent when that is none or the root.
    [[nodiscard]] std::optional<xcb_window_t> focus();

    Connection& connection_;
    Screens screens_;
    WindowTable table_;
    WindowTraits traits_;
    pid_t ownPid_;
    // One pointer sample asks for them several times.
    std::optional<Visible> visible_;
    std::optional<Described> described_;
};

} // namespace lumetry::x11
