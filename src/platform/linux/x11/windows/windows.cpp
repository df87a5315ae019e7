#include "platform/linux/x11/windows/windows.h"

#include "base/text.h"
#include "platform/linux/x11/connection/property.h"
#include "platform/linux/x11/windows/reader.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace lumetry::x11 {

X11Windows::X11Windows(Connection& connection, std::optional<double> chosenScale)
    : connection_(connection), screens_(connection, chosenScale), table_(connection),
      traits_(connection), ownPid_(getpid()) {}

bool X11Windows::isOnScreen(const WindowRecord& window) const {
    return traits_.isOnScreen(window, table_.root().currentDesktop);
}

bool X11Windows::isOwn(const WindowRecord& window) const {
    return window.pid == ownPid_ || connection_.isOwnResource(window.id);
}

const std::vector<const WindowRecord*>& X11Windows::onScreen() {
    table_.refresh();
    if (!visible_ || visible_->version != table_.version()) {
        visible_ = {table_.version(), {}};
        for (const xcb_window_t id : table_.stacking()) {
            const WindowRecord* const window = table_.find(id);
            if (window != nullptr && isOnScreen(*window)) {
                visible_->windows.push_back(window);
            }
        }
        std::ranges::reverse(visible_->windows);
    }
    return visible_->windows;
}

std::optional<std::vector<WindowInfo>> X11Windows::onScreenWindows() {
    const RootSpace space = rootSpace();
    std::vector<WindowInfo> list;
    for (const WindowRecord* const window : onScreen()) {
        const WindowKind kind = traits_.kindOf(*window);
        if (kind != WindowKind::desktop) {
            list.push_back({window->pid, alphaOf(*window), layerOf(kind),
                            space.toAccessibility(boundsOf(*window)), window->id});
        }
    }
    return table_.valid() ? std::optional(std::move(list)) : std::nullopt;
}

std::optional<std::uint32_t> X11Windows::activeWindow() {
    auto window = firstNumber(
        connection_, requestProperty(connection_, connection_.root(), Atom::netActiveWindow, 1));
    if (!window || *window == XCB_WINDOW_NONE) {
        window = focus();
    }
    // What has the focus may lie anywhere below a frame.
    constexpr int deepest = 16;
    for (int level = 0; window && level < deepest; ++level) {
        for (const WindowRecord* const record : onScreen()) {
            if (record->id == *window || record->client == *window) {
                return isOwn(*record) ? std::nullopt : std::optional(record->id);
            }
        }
        const auto tree =
            connection_.reply(xcb_query_tree_reply, xcb_query_tree(connection_.get(), *window));
        window =
            tree && tree->parent != XCB_WINDOW_NONE ? std::optional(tree->parent) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> X11Windows::windowName(std::uint32_t number) {
    constexpr std::uint32_t words = 256;
    table_.refresh();
    const WindowRecord* const window = table_.find(number);
    if (window == nullptr) {
        return std::nullopt;
    }
    const xcb_window_t client = window->client.value_or(window->id);
    const auto modern = requestProperty(connection_, client, Atom::netWmName, words);
    const auto old = requestProperty(connection_, client, XCB_ATOM_WM_NAME, words);
    std::string name = text(connection_, modern);
    const std::string oldName = text(connection_, old);
    if (name.empty()) {
        name = oldName;
    }
    return name.empty() ? std::nullopt : std::optional(validUtf8(name));
}

std::vector<Screen> X11Windows::screens() {
    const ScreenLayout& layout = screens_.layout();
    const auto& windows = onScreen();
    if (!described_ || described_->version != table_.version() || described_->layout != layout) {
        std::vector<Strut> struts;
        for (const WindowRecord* const window : windows) {
            if (window->properties.strut) {
                struts.push_back(*window->properties.strut);
            }
        }
        described_ = {table_.version(), layout,
                      describeScreens(layout, struts, table_.root().workArea)};
    }
    return described_->screens;
}

std::optional<Screen> X11Windows::mainScreen() {
    const auto all = screens();
    const auto centre = centreOfFocus();
    const auto inUse = std::ranges::find_if(
        all, [&](const Screen& screen) { return centre && screen.frame.contains(*centre); });
    return inUse != all.end() ? *inUse : all.front();
}

std::optional<Point> X11Windows::centreOfFocus() {
    auto* const c = connection_.get();
    const auto focused = focus();
    if (!focused) {
        return std::nullopt;
    }
    const auto translation = xcb_translate_coordinates(c, *focused, connection_.root(), 0, 0);
    const auto geometry = xcb_get_geometry(c, *focused);
    const auto origin = connection_.reply(xcb_translate_coordinates_reply, translation);
    const auto size = connection_.reply(xcb_get_geometry_reply, geometry);
    if (!origin || !size) {
        return std::nullopt;
    }
    return screens_.layout().toScreenSpace(
        Point{origin->dst_x + size->width / 2.0, origin->dst_y + size->height / 2.0});
}

std::optional<xcb_window_t> X11Windows::focus() {
    const auto reply =
        connection_.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection_.get()));
    return reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT &&
                   reply->focus != connection_.root()
               ? std::optional(reply->focus)
               : std::nullopt;
}

bool X11Windows::preflightScreenCaptureAccess() {
    const Extensions& extensions = connection_.extensions();
    return extensions.composite && extensions.render && !connection_.isLost();
}

bool X11Windows::requestScreenCaptureAccess() {
    return preflightScreenCaptureAccess();
}

void X11Windows::getShareableContent(std::function<void()> completion) {
    connection_.runLoop().async(std::move(completion));
}

std::optional<DesktopWindow> X11Windows::windowAt(Point point, std::optional<pid_t> pid) {
    const Point at = rootSpace().toRoot(point);
    for (const WindowRecord* const window : onScreen()) {
        const Rect bounds = boundsOf(*window);
        if (!isOwn(*window) && (!pid || window->pid == pid) && bounds.contains(at)) {
            return DesktopWindow{window->client.value_or(window->id), window->pid, bounds,
                                 traits_.kindOf(*window) == WindowKind::popup,
                                 clientBoundsOf(*window)};
        }
    }
    return std::nullopt;
}

ProcessWindows X11Windows::windowsOf(pid_t pid) {
    table_.refresh();
    ProcessWindows process;
    for (const xcb_window_t id : table_.stacking()) {
        const WindowRecord* const window = table_.find(id);
        if (!window || !window->client || window->pid != pid) {
            continue;
        }
        process.any = true;
        process.inTaskBar = process.inTaskBar || traits_.isInTaskBar(*window);
        for (const std::string& name : window->properties.classes) {
            if (std::ranges::find(process.classes, name) == process.classes.end()) {
                process.classes.push_back(name);
            }
        }
    }
    return process;
}

std::vector<const WindowRecord*> X11Windows::visibleBelow(xcb_window_t above) {
    table_.refresh();
    const auto& stacking = table_.stacking();
    const WindowRecord* const limiting = table_.find(above);
    const bool isStacked = limiting != nullptr && limiting->viewable;
    const auto limit = isStacked ? std::ranges::find(stacking, above) : stacking.end();
    std::vector<const WindowRecord*> visible;
    for (auto id = std::make_reverse_iterator(limit); id != stacking.rend(); ++id) {
        const WindowRecord* const window = table_.find(*id);
        // Of its own windows, only what lies below another one counts, and never an overlay.
        if (window && traits_.isVisible(*window, table_.root().currentDesktop) &&
            !(isStacked ? connection_.isOwnResource(*id) : isOwn(*window))) {
            visible.push_back(window);
        }
    }
    return visible;
}

bool X11Windows::isLocker(const WindowRecord& window) {
    // The server makes the window that compositing managers draw into. Window managers have one
    // that catches the pointer where no other window is, and frames.
    const std::uint32_t maker = connection_.makerOf(window.id);
    const auto manager = table_.root().windowManager;
    const bool ofTheDesktop = maker == 0 || (manager && maker == connection_.makerOf(*manager)) ||
                              traits_.kindOf(window) == WindowKind::desktop;
    return window.viewable && window.overrideRedirect && !window.client && !window.clickThrough &&
           !ofTheDesktop && !isOwn(window) &&
           std::ranges::any_of(screens_.layout().screens, [&](const Rect& screen) {
               return intersect(window.rect, screen) == screen;
           });
}

bool X11Windows::isLocker(xcb_window_t topLevel) {
    table_.refresh();
    const WindowRecord* const window = table_.find(topLevel);
    return window != nullptr && isLocker(*window);
}

xcb_window_t X11Windows::lockerOnTop() {
    table_.refresh();
    const auto& stacking = table_.stacking();
    const auto covering = std::find_if(stacking.rbegin(), stacking.rend(), [this](xcb_window_t id) {
        const WindowRecord* const window = table_.find(id);
        return window != nullptr &&
               (isLocker(*window) || (window->client && !isOwn(*window) && isOnScreen(*window)));
    });
    return covering != stacking.rend() && isLocker(*table_.find(*covering))
               ? *covering
               : xcb_window_t{XCB_WINDOW_NONE};
}

std::vector<Rect> X11Windows::occupied() {
    table_.refresh();
    std::vector<Rect> rects;
    for (const xcb_window_t id : table_.stacking()) {
        const WindowRecord* const window = table_.find(id);
        if (window && traits_.isVisible(*window, table_.root().currentDesktop)) {
            rects.push_back(window->rect);
        }
    }
    return rects;
}

bool X11Windows::hasOwnOnScreen() {
    return std::ranges::any_of(onScreen(),
                               [&](const WindowRecord* window) { return isOwn(*window); });
}

bool X11Windows::isOwn(xcb_window_t topLevel) {
    table_.refresh();
    const WindowRecord* const window = table_.find(topLevel);
    return window != nullptr && isOwn(*window);
}

} // namespace lumetry::x11
