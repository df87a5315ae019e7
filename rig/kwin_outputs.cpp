#include "rig/kwin_outputs.h"

#include "rig/processes/wait_until.h"
#include "rig/wayland_connection.h"

#include <kde-output-device-v2-client-protocol.h>
#include <kde-output-management-v2-client-protocol.h>

#include <cstdint>
#include <optional>
#include <stdexcept>

namespace lumetry::desktop {
namespace {

using Configuration = kde_output_configuration_v2;
using Devices = std::vector<kde_output_device_v2*>;

constexpr std::uint32_t protocolVersion = 3;

template<class Change>
void configure(const std::string& socket, Change change) {
    const WaylandConnection connection(socket);
    auto* const management = connection.bindOne<kde_output_management_v2>(
        kde_output_management_v2_interface, protocolVersion);
    const auto devices =
        connection.bindAll<kde_output_device_v2>(kde_output_device_v2_interface, protocolVersion);
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
