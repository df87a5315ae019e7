#include "rig/monitors.h"

#include <sys/uio.h>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <array>
#include <cmath>
#include <stdexcept>
#include <string>

namespace lumetry::desktop {
namespace {

/// The request as it goes to the server: a monitor followed by its one output, if it has any.
struct SetMonitorRequest {
    xcb_randr_set_monitor_request_t head;
    xcb_randr_monitor_info_t monitor;
    xcb_randr_output_t output;
};

/// The output that stands for the whole root window until monitors are set.
xcb_randr_output_t onlyOutput(const XConnection& server) {
    const auto request = xcb_randr_get_screen_resources_current(server.get(), server.root());
    const Reply<xcb_randr_get_screen_resources_current_reply_t> reply(
        xcb_randr_get_screen_resources_current_reply(server.get(), request, nullptr));
    if (!reply || reply->num_outputs != 1) {
        throw std::runtime_error("the X server has not exactly one output to divide");
    }
    return *xcb_randr_get_screen_resources_current_outputs(reply.get());
}

xcb_randr_monitor_info_t monitorInfo(const Rect& rect, xcb_atom_t name, bool primary) {
    constexpr double millimetresPerPixel = 25.4 / 96;
    xcb_randr_monitor_info_t monitor = {};
    monitor.name = name;
    monitor.primary = primary ? 1 : 0;
    // The primary one takes the output, which else would be a monitor of the whole size.
    monitor.nOutput = primary ? 1 : 0;
    monitor.x = static_cast<std::int16_t>(rect.x);
    monitor.y = static_cast<std::int16_t>(rect.y);
    monitor.width = static_cast<std::uint16_t>(rect.width);
    monitor.height = static_cast<std::uint16_t>(rect.height);
    monitor.width_in_millimeters =
        static_cast<std::uint32_t>(std::lround(rect.width * millimetresPerPixel));
    monitor.height_in_millimeters =
        static_cast<std::uint32_t>(std::lround(rect.height * millimetresPerPixel));
    return monitor;
}

/// xcb_randr_set_monitor_checked of libxcb 1.15 gets the length of its request wrong and aborts.
xcb_void_cookie_t setMonitor(const XConnection& server, SetMonitorRequest request) {
    const xcb_protocol_request_t protocol = {1, &xcb_randr_id, XCB_RANDR_SET_MONITOR, 1};
    const auto size =
        sizeof request - (request.monitor.nOutput == 0 ? sizeof request.output : std::size_t{0});
    // The library fills in two parts before the first one.
    std::array<iovec, 3> parts = {};
    parts[2] = {&request, size};
    return {xcb_send_request(server.get(), XCB_REQUEST_CHECKED, &parts[2], &protocol)};
}

} // namespace

void arrangeMonitors(const XConnection& server, const std::vector<Rect>& monitors) {
    const auto output = onlyOutput(server);
    for (std::size_t index = 0; index < monitors.size(); ++index) {
        const auto name = "monitor-" + std::to_string(index);
        // What is there already by that name is not replaced.
        xcb_randr_delete_monitor(server.get(), server.root(), server.atom(name));
        SetMonitorRequest request = {};
        request.head.window = server.root();
        request.monitor = monitorInfo(monitors[index], server.atom(name), index == 0);
        request.output = output;
        const Reply<xcb_generic_error_t> error(
            xcb_request_check(server.get(), setMonitor(server, request)));
        if (error) {
            throw std::runtime_error("the X server refuses " + name);
        }
    }
}

} // namespace lumetry::desktop
