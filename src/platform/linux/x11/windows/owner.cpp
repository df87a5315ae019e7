#include "platform/linux/x11/windows/owner.h"

#include "base/text.h"

#include <unistd.h>

#include <array>
#include <string>

namespace lumetry::x11 {
namespace {

std::string nameOfThisMachine() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data())
                                                          : std::string();
}

std::optional<pid_t> localPid(const xcb_res_query_client_ids_reply_t& reply) {
    auto iterator = xcb_res_query_client_ids_ids_iterator(&reply);
    for (; iterator.rem > 0; xcb_res_client_id_value_next(&iterator)) {
        const auto* const value = iterator.data;
        if ((value->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(value) > 0) {
            const auto pid = static_cast<pid_t>(*xcb_res_client_id_value_value(value));
            return pid > 0 ? std::optional(pid) : std::nullopt;
        }
    }
    return std::nullopt;
}

} // namespace

OwnerRequest requestOwner(Connection& connection, xcb_window_t window) {
    constexpr std::uint32_t hostNameWords = 64;
    OwnerRequest request;
    if (connection.extensions().resource) {
        const xcb_res_client_id_spec_t spec = {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        request.clientIds = xcb_res_query_client_ids(connection.get(), 1, &spec);
    }
    request.pid = requestProperty(connection, window, Atom::netWmPid, 1);
    request.machine =
        requestProperty(connection, window, XCB_ATOM_WM_CLIENT_MACHINE, hostNameWords);
    return request;
}

std::optional<pid_t> takeOwner(Connection& connection, const OwnerRequest& request) {
    std::optional<pid_t> known;
    if (request.clientIds) {
        if (const auto ids = connection.reply(xcb_res_query_client_ids_reply, *request.clientIds)) {
            known = localPid(*ids);
        }
    }
    const auto claimed = firstNumber(connection, request.pid);
    const auto machine = nonEmptyParts(text(connection, request.machine), '\0');
    if (known || !claimed || *claimed == 0 || machine.empty() ||
        machine.front() != nameOfThisMachine()) {
        return known;
    }
    return static_cast<pid_t>(*claimed);
}

} // namespace lumetry::x11
