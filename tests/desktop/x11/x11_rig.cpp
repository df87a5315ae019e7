#include "x11_rig.h"

#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/res.h>
#include <xcb/shape.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

DesktopOptions desktopOptions(const X11Rig::Options& options) {
    DesktopOptions desktop;
    desktop.width = 800;
    desktop.height = 600;
    desktop.depth = options.depth;
    desktop.screens = options.screens;
    desktop.windowManager = options.windowManager;
    desktop.compositor = options.compositor;
    desktop.accessibility = AccessibilityBus::none;
    desktop.serverArguments = options.serverArguments;
    return desktop;
}

xcb_visualid_t visualOf(const xcb_screen_t& screen, std::uint8_t depth) {
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth == depth && depths.data->visuals_len > 0) {
            return xcb_depth_visuals(depths.data)->visual_id;
        }
    }
    return 0;
}

/// A window that the server has once this returns.
xcb_window_t createWindow(const XConnection& server, const Rect& rect,
                          const WindowOptions& options) {
    constexpr std::uint8_t translucentDepth = 32;
    auto* const c = server.get();
    const xcb_screen_t& screen = server.screen();
    xcb_create_window_value_list_t values{};
    values.background_pixel = options.translucent ? options.color : server.pixelOf(options.color);
    values.override_redirect = options.overrideRedirect ? 1 : 0;
    std::uint32_t given = XCB_CW_OVERRIDE_REDIRECT;
    if (!options.inputOnly) {
        given |= std::uint32_t{XCB_CW_BACK_PIXEL} | XCB_CW_BORDER_PIXEL;
    }
    std::uint8_t depth = options.inputOnly ? std::uint8_t{0} : screen.root_depth;
    xcb_visualid_t visual = screen.root_visual;
    if (options.translucent) {
        depth = translucentDepth;
        visual = visualOf(screen, depth);
        values.colormap = xcb_generate_id(c);
        given |= XCB_CW_COLORMAP;
        xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, values.colormap, screen.root, visual);
    }
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window_aux(
        c, depth, window, options.parent != XCB_NONE ? options.parent : screen.root,
        static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
        static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height),
        static_cast<std::uint16_t>(options.border),
        options.inputOnly ? XCB_WINDOW_CLASS_INPUT_ONLY : XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        given, &values);
    server.sync();
    return window;
}

/// What the other process is asked for, over a socket between copies of one program.
struct Order {
    std::array<char, 16> display{};
    Rect rect;
    WindowOptions options;
};

/// The other process: ends with whoever gives the orders.
[[noreturn]] void carryOut(int orders) {
    std::optional<XConnection> server;
    for (Order order; read(orders, &order, sizeof order) == sizeof order;) {
        if (!server) {
            server.emplace(order.display.data());
        }
        const xcb_window_t window = createWindow(*server, order.rect, order.options);
        static_cast<void>(write(orders, &window, sizeof window));
    }
    _exit(0);
}

} // namespace

OtherProcess::OtherProcess() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::runtime_error("no socket can be made");
    }
    orders_ = FileDescriptor(ends[0]);
    FileDescriptor other(ends[1]);
    pid_ = fork();
    if (pid_ == 0) {
        orders_.reset();
        carryOut(other.get());
    }
}

OtherProcess::~OtherProcess() {
    orders_.reset();
    waitpid(pid_, nullptr, 0);
}

xcb_window_t OtherProcess::makeWindow(const std::string& display, const Rect& rect,
                                      const WindowOptions& options) const {
    Order order{{}, rect, options};
    display.copy(order.display.data(), order.display.size() - 1);
    xcb_window_t window = XCB_NONE;
    if (write(orders_.get(), &order, sizeof order) != sizeof order ||
        read(orders_.get(), &window, sizeof window) != sizeof window) {
        throw std::runtime_error("the other process makes no window");
    }
    return window;
}

X11Rig::X11Rig(const Options& options) : desktop(desktopOptions(options)) {
    openX11();
}

void X11Rig::openX11() {
    setenv("DISPLAY", desktop.display().c_str(), 1);
    std::string problem;
    x11_ = X11Desktop::open(loop, loop, problem);
    if (!x11_) {
        throw std::runtime_error(problem);
    }
}

xcb_window_t X11Rig::foreignWindow(const Rect& rect, const WindowOptions& options) const {
    return other_.makeWindow(desktop.display(), rect, options);
}

xcb_window_t X11Rig::ownWindow(const Rect& rect, const WindowOptions& options) const {
    return createWindow(desktop.server(), rect, options);
}

void X11Rig::map(xcb_window_t window) const {
    xcb_map_window(xcb(), window);
    desktop.server().sync();
}

void X11Rig::unmap(xcb_window_t window) const {
    xcb_unmap_window(xcb(), window);
    desktop.server().sync();
}

void X11Rig::destroy(xcb_window_t window) const {
    xcb_destroy_window(xcb(), window);
    desktop.server().sync();
}

void X11Rig::raise(xcb_window_t window) const {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    desktop.server().sync();
}

void X11Rig::move(xcb_window_t window, const Rect& rect) const {
    const std::array<std::uint32_t, 4> values = {
        static_cast<std::uint32_t>(rect.x), static_cast<std::uint32_t>(rect.y),
        static_cast<std::uint32_t>(rect.width), static_cast<std::uint32_t>(rect.height)};
    xcb_configure_window(xcb(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    desktop.server().sync();
}

void X11Rig::setNumbers(xcb_window_t window, std::string_view property, xcb_atom_t type,
                        const std::vector<std::uint32_t>& numbers) const {
    xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, window, desktop.server().atom(property), type,
                        32, static_cast<std::uint32_t>(numbers.size()), numbers.data());
    desktop.server().sync();
}

void X11Rig::setAtoms(xcb_window_t window, std::string_view property,
                      const std::vector<std::string_view>& names) const {
    std::vector<std::uint32_t> atoms;
    atoms.reserve(names.size());
    for (const auto name : names) {
        atoms.push_back(desktop.server().atom(name));
    }
    setNumbers(window, property, XCB_ATOM_ATOM, atoms);
}

void X11Rig::setText(xcb_window_t window, std::string_view property, std::string_view text) const {
    xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, window, desktop.server().atom(property),
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(text.size()), text.data());
    desktop.server().sync();
}

void X11Rig::emptyInputShape(xcb_window_t window) const {
    xcb_shape_rectangles(xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, 0, window, 0, 0, 0, nullptr);
    desktop.server().sync();
}

std::map<xcb_atom_t, std::uint32_t> X11Rig::resourceCounts() const {
    std::map<xcb_atom_t, std::uint32_t> counts;
    const Reply<xcb_res_query_clients_reply_t> clients(
        xcb_res_query_clients_reply(xcb(), xcb_res_query_clients(xcb()), nullptr));
    const auto* const all = xcb_res_query_clients_clients(clients.get());
    for (int i = 0; i < xcb_res_query_clients_clients_length(clients.get()); ++i) {
        if (all[i].resource_base == xcb_get_setup(xcb())->resource_id_base) {
            continue;
        }
        const Reply<xcb_res_query_client_resources_reply_t> resources(
            xcb_res_query_client_resources_reply(
                xcb(), xcb_res_query_client_resources(xcb(), all[i].resource_base), nullptr));
        if (!resources) {
            continue;
        }
        const auto* const types = xcb_res_query_client_resources_types(resources.get());
        for (int j = 0; j < xcb_res_query_client_resources_types_length(resources.get()); ++j) {
            counts[types[j].resource_type] += types[j].count;
        }
    }
    return counts;
}

std::vector<WindowInfo> X11Rig::foreignList() {
    std::vector<WindowInfo> foreign;
    for (const WindowInfo& window :
         x11().windowServer().onScreenWindows().value_or(std::vector<WindowInfo>{})) {
        if (window.ownerPID == foreignPid()) {
            foreign.push_back(window);
        }
    }
    return foreign;
}

std::vector<WindowInfo> X11Rig::waitForList(std::size_t count) {
    std::vector<WindowInfo> list;
    loop.requireUntil(std::to_string(count) + " windows", [&] {
        list = foreignList();
        return list.size() == count;
    });
    return list;
}

} // namespace lumetry::desktop
