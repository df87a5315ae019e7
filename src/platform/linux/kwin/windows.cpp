#include "platform/linux/kwin/windows.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace lumetry::kwin {
namespace {

/// What the window manager's layers are called in the window list.
int layerOf(Kind kind) {
    switch (kind) {
    case Kind::floating:
        return 3;
    case Kind::dock:
        return 20;
    case Kind::popup:
        return 101;
    case Kind::desktop:
    case Kind::normal:
        break;
    }
    return 0;
}

} // namespace

KWinWindows::KWinWindows(Bridge& bridge, std::function<std::vector<Output>()> outputs,
                         std::function<bool()> mayCapture, std::function<bool()> grantCapture,
                         RunLoop& runLoop)
    : bridge_(bridge), outputs_(std::move(outputs)), mayCapture_(std::move(mayCapture)),
      grantCapture_(std::move(grantCapture)), runLoop_(runLoop), ownPid_(getpid()) {}

std::optional<std::vector<WindowInfo>> KWinWindows::onScreenWindows() {
    const auto& windows = bridge_.windows();
    if (!windows) {
        return std::nullopt;
    }
    const RootSpace space = rootSpace();
    std::vector<WindowInfo> list;
    for (const Window& window : *windows) {
        if (window.kind != Kind::desktop) {
            list.push_back({window.pid, window.opacity, layerOf(window.kind),
                            space.toAccessibility(window.frame), window.number});
        }
    }
    return list;
}

std::optional<std::uint32_t> KWinWindows::activeWindow() {
    const auto& windows = shown();
    const auto active = std::ranges::find_if(windows, &Window::active);
    return active != windows.end() && !isOwn(*active) ? std::optional(active->number)
                                                      : std::nullopt;
}

std::optional<std::string> KWinWindows::windowName(std::uint32_t number) {
    const auto& windows = shown();
    const auto window = std::ranges::find(windows, number, &Window::number);
    return window != windows.end() && !window->caption.empty() ? std::optional(window->caption)
                                                               : std::nullopt;
}

/// Those on the screen, the topmost first; none when KWin does not answer.
const std::vector<Window>& KWinWindows::shown() {
    static const std::vector<Window> none;
    const auto& windows = bridge_.windows();
    return windows ? *windows : none;
}

std::vector<Screen> KWinWindows::screens() {
    const auto outputs = outputs_();
    std::vector<Screen> screens;
    screens.reserve(outputs.size());
    for (const Output& output : outputs) {
        // Turned over at the primary display's height, its top-left corner being the origin.
        const Rect& primary = outputs.front().frame;
        const Rect frame = {output.frame.x - primary.x, primary.maxY() - output.frame.maxY(),
                            output.frame.width, output.frame.height};
        screens.push_back({frame, frame, output.scale});
    }
    return screens;
}

std::optional<Screen> KWinWindows::mainScreen() {
    const auto all = screens();
    if (all.empty()) {
        return std::nullopt;
    }
    const auto& windows = shown();
    const auto active = std::ranges::find_if(windows, &Window::active);
    if (active != windows.end()) {
        const Rect frame = rootSpace().toAccessibility(active->frame);
        const Point centre = {frame.midX(), frame.midY()};
        for (const Screen& screen : all) {
            if (flipped(screen.frame, all.front().frame.height).contains(centre)) {
                return screen;
            }
        }
    }
    return all.front();
}

RootSpace KWinWindows::rootSpace() {
    const auto outputs = outputs_();
    return {outputs.empty() ? Point() : outputs.front().frame.origin(), 1};
}

std::optional<DesktopWindow> KWinWindows::windowAt(Point point, std::optional<pid_t> pid) {
    const Point at = rootSpace().toRoot(point);
    const auto& windows = shown();
    const auto found = std::ranges::find_if(windows, [&](const Window& window) {
        return !isOwn(window) && (!pid || window.pid == pid) && window.frame.contains(at);
    });
    if (found == windows.end()) {
        return std::nullopt;
    }
    DesktopWindow window;
    window.id = found->number;
    window.pid = found->pid;
    window.bounds = found->frame;
    window.popup = found->kind == Kind::popup;
    window.client = found->client;
    window.surface = found->buffer;
    window.pixelsPerUnit = scaleOf(*found);
    const auto opener = std::find_if(found, windows.end(), [&](const Window& below) {
        return below.pid == found->pid && below.kind != Kind::popup;
    });
    if (window.popup && opener != windows.end()) {
        window.openerSurface = opener->buffer;
    }
    return window;
}

/// Of the output that most of it is on.
double KWinWindows::scaleOf(const Window& window) const {
    double scale = 1;
    double most = 0;
    for (const Output& output : outputs_()) {
        const Rect shared = intersect(output.frame, window.frame);
        const double area = shared.isEmpty() ? 0 : shared.width * shared.height;
        if (area > most) {
            most = area;
            scale = output.scale;
        }
    }
    return scale;
}

ProcessWindows KWinWindows::windowsOf(pid_t pid) {
    ProcessWindows process;
    for (const Window& window : shown()) {
        if (window.pid != pid || window.kind == Kind::popup) {
            continue;
        }
        process.any = true;
        process.inTaskBar = process.inTaskBar || window.inTaskBar;
        for (const std::string& name : window.classes) {
            if (std::ranges::find(process.classes, name) == process.classes.end()) {
                process.classes.push_back(name);
            }
        }
    }
    return process;
}

} // namespace lumetry::kwin
