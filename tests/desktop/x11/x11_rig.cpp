#include "x11_rig.h"

#include <xcb/res.h>
#include <xcb/shape.h>

#include <array>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

DesktopOptions desktopOptions(const X11Rig::Options& options) {
    DesktopOptions desktop;
    desktop.width = 800;
    desktop.height = 600;
    desktop.screens = options.screens;
    desktop.windowManager = options.windowManager;
    desktop.compositor = options.compositor;
    desktop.accessibility = AccessibilityBus::none;
    desktop.serverArguments = options.serverArguments;
    return desktop;
}

} // namespace

X11Rig::X11Rig(const Options& options) : desktop(desktopOptions(options)), orders_(makePipe()) {
    ProcessOptions process;
    process.environment = desktop.environment();
    process.standardInput = orders_.readEnd.get();
    maker_.emplace(std::vector<std::string>{LUMETRY_WINDOW_MAKER}, process);
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

xcb_window_t X11Rig::foreignWindow(const Rect& rect, const WindowOptions& options) {
    std::ostringstream order;
    order << rect.x << ' ' << rect.y << ' ' << rect.width << ' ' << rect.height << ' '
          << options.overrideRedirect << ' ' << options.inputOnly << ' ' << options.color << ' '
          << options.parent << ' ' << options.border << ' ' << options.translucent << '\n';
    const std::string line = order.str();
    if (write(orders_.writeEnd.get(), line.data(), line.size()) !=
        static_cast<ssize_t>(line.size())) {
        throw std::runtime_error("the window maker does not listen");
    }
    ++madeWindows_;
    return requireUntil("a window of another process",
                        [this]() -> std::optional<xcb_window_t> {
                            std::istringstream lines(maker_->standardOutput());
                            xcb_window_t window = XCB_NONE;
                            for (std::size_t i = 0; i < madeWindows_; ++i) {
                                if (!(lines >> window) || lines.peek() != '\n') {
                                    return std::nullopt;
                                }
                            }
                            return window;
                        })
        .value();
}

xcb_window_t X11Rig::ownWindow(const Rect& rect, const WindowOptions& options) const {
    const xcb_window_t window = xcb_generate_id(xcb());
    xcb_create_window_value_list_t values{};
    values.background_pixel = options.color;
    values.override_redirect = options.overrideRedirect ? 1 : 0;
    xcb_create_window_aux(xcb(), XCB_COPY_FROM_PARENT, window, desktop.server().root(),
                          static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
                          static_cast<std::uint16_t>(rect.width),
                          static_cast<std::uint16_t>(rect.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          desktop.server().screen().root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, &values);
    desktop.server().sync();
    return window;
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
