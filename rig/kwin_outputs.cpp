#include "rig/kwin_outputs.h"

#include "rig/processes/wait_until.h"
#include "rig/wayland_connection.h"

#include <kde-output-device-v2-client-protocol.h>
#include <kde-output-management-v2-client-protocol.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace lumetry::desktop {
namespace {

using Configuration = kde_output_configuration_v2;
using Devices = std::vector<kde_output_device_v2*>;

constexpr std::uint32_t protocolVersion = 3;

using Modes = std::vector<kde_output_device_mode_v2*>;

/// Notes the modes that an output comes with, for they have to be let go of; all else that it says
/// is left out.
int noteMode(const void* /*implementation*/, void* output, std::uint32_t /*opcode*/,
             const wl_message* event, wl_argument* arguments) {
    if (std::string_view(event->name) == "mode") {
        auto* const modes =
            static_cast<Modes*>(wl_proxy_get_user_data(static_cast<wl_proxy*>(output)));
        modes->push_back(reinterpret_cast<kde_output_device_mode_v2*>(arguments[0].o));
    }
    return 0;
}

template<class Change>
void configure(const std::string& socket, Change change) {
    const WaylandConnection connection(socket);
    auto* const management = connection.bindOne<kde_output_management_v2>(
        kde_output_management_v2_interface, protocolVersion);
    const auto devices =
        connection.bindAll<kde_output_device_v2>(kde_output_device_v2_interface, protocolVersion);
    Modes modes;
    for (auto* const device : devices) {
        wl_proxy_add_dispatcher(reinterpret_cast<wl_proxy*>(device), noteMode, nullptr, &modes);
    }
    connection.sync();
    std::optional<bool> applied;
    static constexpr kde_output_configuration_v2_listener listener = {
        [](void* data, Configuration*) { *static_cast<std::optional<bool>*>(data) = true; },
        [](void* data, Configuration*) { *static_cast<std::optional<bool>*>(data) = false; }};
    auto* const configuration = kde_output_management_v2_create_configuration(management);
    kde_output_configuration_v2_add_listener(configuration, &listener, &applied);
    change(configuration, devices);
    kde_output_configuration_v2_apply(configuration);
    requireUntil("an output to be configured", [&] {
        connection.sync();
        return applied.has_value();
    });
    kde_output_configuration_v2_destroy(configuration);
    kde_output_management_v2_destroy(management);
    std::ranges::for_each(modes, kde_output_device_mode_v2_destroy);
    std::ranges::for_each(devices, kde_output_device_v2_destroy);
    if (applied != true) {
        throw std::runtime_error("KWin does not arrange its outputs as asked");
    }
}

} // namespace

void setOutputScale(const std::string& socket, std::size_t output, double scale) {
    configure(socket, [&](Configuration* configuration, const Devices& devices) {
        kde_output_configuration_v2_scale(configuration, devices.at(output),
                                          wl_fixed_from_double(scale));
    });
}

void setOutputTransform(const std::string& socket, std::size_t output, int transform) {
    configure(socket, [&](Configuration* configuration, const Devices& devices) {
        kde_output_configuration_v2_transform(configuration, devices.at(output), transform);
    });
}

void setOutputEnabled(const std::string& socket, std::size_t output, bool enabled) {
    configure(socket, [&](Configuration* configuration, const Devices& devices) {
        kde_output_configuration_v2_enable(configuration, devices.at(output), enabled ? 1 : 0);
    });
}

void setOutputOrder(const std::string& socket, const std::vector<std::size_t>& places) {
    configure(socket, [&](Configuration* configuration, const Devices& devices) {
        std::uint32_t priority = 0;
        for (const std::size_t place : places) {
            kde_output_configuration_v2_set_priority(configuration, devices.at(place), ++priority);
        }
    });
}

} // namespace lumetry::desktop
