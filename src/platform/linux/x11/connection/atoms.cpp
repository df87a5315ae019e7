#include "platform/linux/x11/connection/atoms.h"

#include "platform/linux/x11/connection/reply.h"

#include <cstdint>

namespace lumetry::x11 {

std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                    std::span<const std::string_view> names) {
    std::vector<xcb_intern_atom_cookie_t> requests;
    requests.reserve(names.size());
    for (const std::string_view name : names) {
        requests.push_back(
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    }
    std::vector<xcb_atom_t> atoms;
    atoms.reserve(names.size());
    for (const xcb_intern_atom_cookie_t request : requests) {
        const Reply<xcb_intern_atom_reply_t> answer(
            xcb_intern_atom_reply(connection, request, nullptr));
        atoms.push_back(answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

xcb_atom_t internAtom(xcb_connection_t* connection, std::string_view name) {
    return internAtoms(connection, {&name, 1}).front();
}

} // namespace lumetry::x11
