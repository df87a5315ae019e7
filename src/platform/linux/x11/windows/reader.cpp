#include "platform/linux/x11/windows/reader.h"

#include "base/text.h"

#include <xcb/shape.h>

#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>

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

/// How far below a frame window managers put the application's window.
constexpr int deepestClient = 3;
/// Some frames have dozens of parts; far more are the inside of a menu.
constexpr std::size_t mostChildren = 256;

constexpr std::uint32_t fewWords = 64;
constexpr std::uint32_t textWords = 256;

Rect signedRect(const std::vector<std::uint32_t>& values, std::size_t first) {
    const auto at = [&](std::size_t i) {
        return static_cast<double>(static_cast<std::int32_t>(values[first + i]));
    };
    return {at(0), at(1), at(2), at(3)};
}

std::optional<Margins> marginsOf(const std::vector<std::uint32_t>& values) {
    if (values.size() < 4) {
        return std::nullopt;
    }
    const Rect four = signedRect(values, 0);
    return Margins{four.x, four.y, four.width, four.height};
}

std::optional<Strut> strutOf(const std::vector<std::uint32_t>& partial,
                             const std::vector<std::uint32_t>& whole) {
    constexpr double everywhere = 0x7FFF;
    constexpr std::size_t partialSize = 12;
    if (partial.size() >= partialSize) {
        const auto at = [&](std::size_t i) { return static_cast<double>(partial[i]); };
        return Strut{{at(0), at(1), at(2), at(3)},
                     {at(4), at(6), at(8), at(10)},
                     {at(5), at(7), at(9), at(11)}};
    }
    if (const auto depth = marginsOf(whole)) {
        return Strut{*depth, {}, {everywhere, everywhere, everywhere, everywhere}};
    }
    return std::nullopt;
}

struct BasicsRequest {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_shape_get_rectangles_cookie_t inputShape;
    xcb_shape_query_extents_cookie_t shape;
};

struct DetailsRequest {
    std::optional<xcb_translate_coordinates_cookie_t> origin;
    std::optional<xcb_get_geometry_cookie_t> size;
    OwnerRequest owner;
    PropertyRequest types, states, wmState, desktop, opacity, frameOpacity, frameExtents,
        shadowExtents, strutPartial, strut, wmClass, gtkApplication, kdeDesktopFile;
};

DetailsRequest requestDetails(Connection& connection, const WindowRecord& window) {
    auto* const c = connection.get();
    const xcb_window_t id = window.client.value_or(window.id);
    const auto ask = [&](Atom atom, std::uint32_t words) {
        return requestProperty(connection, id, atom, words);
    };
    DetailsRequest request{};
    if (id != window.id) {
        request.origin = xcb_translate_coordinates(c, id, window.id, 0, 0);
        request.size = xcb_get_geometry(c, id);
    }
    request.owner = requestOwner(connection, id);
    request.types = ask(Atom::netWmWindowType, fewWords);
    request.states = ask(Atom::netWmState, fewWords);
    request.wmState = ask(Atom::wmState, 2);
    request.desktop = ask(Atom::netWmDesktop, 1);
    request.opacity = ask(Atom::netWmWindowOpacity, 1);
    request.frameOpacity = requestProperty(connection, window.id, Atom::netWmWindowOpacity, 1);
    request.frameExtents = ask(Atom::netFrameExtents, 4);
    request.shadowExtents = ask(Atom::gtkFrameExtents, 4);
    request.strutPartial = ask(Atom::netWmStrutPartial, 12);
    request.strut = ask(Atom::netWmStrut, 4);
    request.wmClass = requestProperty(connection, id, XCB_ATOM_WM_CLASS, textWords);
    request.gtkApplication = ask(Atom::gtkApplicationId, textWords);
    request.kdeDesktopFile = ask(Atom::kdeDesktopFile, textWords);
    return request;
}

WindowProperties takeProperties(Connection& connection, const DetailsRequest& request) {
    constexpr std::uint32_t iconicState = 3;
    WindowProperties properties;
    properties.types = numbers(connection, request.types);
    properties.states = numbers(connection, request.states);
    properties.iconic = firstNumber(connection, request.wmState) == iconicState;
    properties.desktop = firstNumber(connection, request.desktop);
    properties.opacity = firstNumber(connection, request.opacity);
    const auto frameOpacity = firstNumber(connection, request.frameOpacity);
    if (!properties.opacity) {
        properties.opacity = frameOpacity;
    }
    properties.frameExtents = marginsOf(numbers(connection, request.frameExtents));
    properties.shadowExtents = marginsOf(numbers(connection, request.shadowExtents));
    const auto partial = numbers(connection, request.strutPartial);
    properties.strut = strutOf(partial, numbers(connection, request.strut));
    for (const PropertyRequest list :
         {request.wmClass, request.gtkApplication, request.kdeDesktopFile}) {
        for (auto& one : nonEmptyParts(text(connection, list), '\0')) {
            properties.classes.push_back(std::move(one));
        }
    }
    return properties;
}

/// One step down in the search for a client.
struct Search {
    WindowRecord* window;
    std::vector<xcb_window_t> level;
};

struct LevelRequest {
    PropertyRequest wmState;
    xcb_query_tree_cookie_t tree;
};

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

WindowReader::WindowReader(Connection& connection) : connection_(connection) {}

std::optional<RootFacts> WindowReader::readRoot() {
    auto* const c = connection_.get();
    const xcb_window_t root = connection_.root();
    constexpr std::uint32_t workAreaWords = 4 * 64;
    const auto tree = xcb_query_tree(c, root);
    const auto attributes = xcb_get_window_attributes(c, root);
    const auto desktop = requestProperty(connection_, root, Atom::netCurrentDesktop, 1);
    const auto manager = requestProperty(connection_, root, Atom::netSupportingWmCheck, 1);
    const auto workArea = requestProperty(connection_, root, Atom::netWorkarea, workAreaWords);

    RootFacts facts;
    const auto children = connection_.reply(xcb_query_tree_reply, tree);
    const auto rootAttributes = connection_.reply(xcb_get_window_attributes_reply, attributes);
    facts.currentDesktop = firstNumber(connection_, desktop);
    facts.windowManager = firstNumber(connection_, manager);
    const auto areas = numbers(connection_, workArea);
    if (!children || !rootAttributes) {
        return std::nullopt;
    }
    const auto* const first = xcb_query_tree_children(children.get());
    facts.children.assign(first, first + xcb_query_tree_children_length(children.get()));
    // Every window manager asks for this, and only one client may.
    facts.windowManagerRuns =
        (rootAttributes->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
    const std::size_t place = std::size_t{4} * facts.currentDesktop.value_or(0);
    if (place + 4 <= areas.size()) {
        facts.workArea = signedRect(areas, place);
    }
    return facts;
}

void WindowReader::select(xcb_window_t window, std::uint32_t eventMask) {
    // The overlay listens on its own windows itself, and there is one event mask per connection.
    if (!connection_.isOwnResource(window)) {
        xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &eventMask);
    }
}

void WindowReader::watchProperties(xcb_window_t window) {
    select(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void WindowReader::readBasics(std::span<WindowRecord*> windows) {
    auto* const c = connection_.get();
    std::vector<BasicsRequest> requests;
    for (WindowRecord* const window : windows) {
        watchProperties(window->id);
        xcb_shape_select_input(c, window->id, 1);
        requests.push_back({xcb_get_window_attributes(c, window->id),
                            xcb_get_geometry(c, window->id),
                            xcb_shape_get_rectangles(c, window->id, XCB_SHAPE_SK_INPUT),
                            xcb_shape_query_extents(c, window->id)});
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        WindowRecord& window = *windows[i];
        const auto attributes =
            connection_.reply(xcb_get_window_attributes_reply, requests[i].attributes);
        const auto geometry = connection_.reply(xcb_get_geometry_reply, requests[i].geometry);
        const auto input =
            connection_.reply(xcb_shape_get_rectangles_reply, requests[i].inputShape);
        const auto shape = connection_.reply(xcb_shape_query_extents_reply, requests[i].shape);
        window.basicsDirty = false;
        window.viewable = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        if (attributes && geometry) {
            const double border = 2.0 * geometry->border_width;
            window.borderWidth = geometry->border_width;
            window.visual = attributes->visual;
            window.overrideRedirect = attributes->override_redirect != 0;
            window.inputOnly = attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY;
            window.rect = {static_cast<double>(geometry->x), static_cast<double>(geometry->y),
                           geometry->width + border, geometry->height + border};
        }
        window.clickThrough = input && input->rectangles_len == 0;
        window.shaped = shape && shape->bounding_shaped != 0;
    }
}

void WindowReader::findClients(std::span<WindowRecord*> windows) {
    auto* const c = connection_.get();
    std::vector<Search> searches;
    for (WindowRecord* const window : windows) {
        window->searchDue = false;
        searches.push_back({window, {window->id}});
    }
    for (int depth = 0; depth <= deepestClient && !searches.empty(); ++depth) {
        std::vector<std::vector<LevelRequest>> requests;
        for (const Search& search : searches) {
            auto& level = requests.emplace_back();
            for (const xcb_window_t id : search.level) {
                level.push_back(
                    {requestProperty(connection_, id, Atom::wmState, 1), xcb_query_tree(c, id)});
            }
        }
        std::vector<Search> next;
        for (std::size_t i = 0; i < searches.size(); ++i) {
            Search below = {searches[i].window, {}};
            for (std::size_t j = 0; j < searches[i].level.size(); ++j) {
                const auto state = firstNumber(connection_, requests[i][j].wmState);
                const auto tree = connection_.reply(xcb_query_tree_reply, requests[i][j].tree);
                // A withdrawn window keeps the property with the value 0.
                if (state.value_or(0) != 0 && !below.window->client) {
                    below.window->client = searches[i].level[j];
                }
                if (tree) {
                    const auto* const first = xcb_query_tree_children(tree.get());
                    below.level.insert(below.level.end(), first,
                                       first + xcb_query_tree_children_length(tree.get()));
                }
            }
            if (below.window->client) {
                below.window->detailsDirty = true;
                if (*below.window->client != below.window->id) {
                    select(*below.window->client,
                           XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
                }
            } else if (!below.level.empty() && below.level.size() <= mostChildren) {
                next.push_back(std::move(below));
            }
        }
        searches = std::move(next);
    }
}

void WindowReader::readDetails(std::span<WindowRecord*> windows) {
    std::vector<DetailsRequest> requests;
    requests.reserve(windows.size());
    for (const WindowRecord* const window : windows) {
        requests.push_back(requestDetails(connection_, *window));
    }
    for (std::size_t i = 0; i < windows.size(); ++i) {
        WindowRecord& window = *windows[i];
        window.detailsDirty = false;
        if (requests[i].origin) {
            const auto origin =
                connection_.reply(xcb_translate_coordinates_reply, *requests[i].origin);
            const auto size = connection_.reply(xcb_get_geometry_reply, *requests[i].size);
            if (origin && size) {
                window.clientRect = {
                    static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
                    static_cast<double>(size->width), static_cast<double>(size->height)};
            }
        }
        window.pid = takeOwner(connection_, requests[i].owner);
        window.properties = takeProperties(connection_, requests[i]);
    }
}

void WindowReader::forget(const WindowRecord& window) {
    select(window.id, XCB_EVENT_MASK_NO_EVENT);
    xcb_shape_select_input(connection_.get(), window.id, 0);
    if (window.client && *window.client != window.id) {
        select(*window.client, XCB_EVENT_MASK_NO_EVENT);
    }
}

} // namespace lumetry::x11
