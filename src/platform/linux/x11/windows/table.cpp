#include "platform/linux/x11/windows/table.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Once nobody has asked for that long, the next change ends listening.
constexpr double idleSeconds = 5;

constexpr std::uint32_t rootEventMask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY |
                                        XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                        XCB_EVENT_MASK_PROPERTY_CHANGE;

constexpr std::array relevantAtoms = {
    Atom::netWmWindowType,    Atom::netWmState,      Atom::netWmDesktop,
    Atom::netWmWindowOpacity, Atom::netFrameExtents, Atom::gtkFrameExtents,
    Atom::netWmStrutPartial,  Atom::netWmStrut,      Atom::gtkApplicationId,
    Atom::kdeDesktopFile,     Atom::netWmPid,
};

} // namespace

WindowTable::WindowTable(Connection& connection) : connection_(connection), reader_(connection) {}

const WindowRecord* WindowTable::find(xcb_window_t topLevel) const {
    const auto found = windows_.find(topLevel);
    return found == windows_.end() ? nullptr : &found->second;
}

WindowRecord* WindowTable::recordOf(xcb_window_t topLevel) {
    const auto found = windows_.find(topLevel);
    return found == windows_.end() ? nullptr : &found->second;
}

WindowRecord* WindowTable::recordOfClient(xcb_window_t client) {
    const auto found = std::ranges::find_if(
        windows_, [client](const auto& entry) { return entry.second.client == client; });
    return found == windows_.end() ? nullptr : &found->second;
}

template<class Condition>
std::vector<WindowRecord*> WindowTable::select(Condition condition) {
    std::vector<WindowRecord*> chosen;
    for (auto& [id, window] : windows_) {
        if (condition(window)) {
            chosen.push_back(&window);
        }
    }
    return chosen;
}

void WindowTable::refresh() {
    lastAsked_ = connection_.runLoop().now();
    if (connection_.isLost()) {
        stopListening();
        return;
    }
    listen();
    if (current_) {
        return;
    }
    const std::array read = {readTree(), readBasics(), findClients(), readDetails()};
    if (std::ranges::find(read, true) == read.end()) {
        current_ = true;
    } else {
        changed();
    }
}

void WindowTable::changed() {
    current_ = false;
    ++version_;
}

void WindowTable::listen() {
    if (!listening_) {
        listening_ = true;
        treeDirty_ = true;
        events_ = connection_.onEvent([this](const auto& event) { handle(event); });
        rootEvents_ = connection_.selectOnRoot(rootEventMask);
    }
}

void WindowTable::stopListening() {
    rootEvents_.reset();
    events_.reset();
    for (const auto& [id, window] : windows_) {
        reader_.forget(window);
    }
    windows_.clear();
    root_ = {};
    listening_ = false;
    changed();
    connection_.flush();
}

bool WindowTable::readTree() {
    if (!treeDirty_) {
        return false;
    }
    auto facts = reader_.readRoot();
    if (!facts) {
        root_ = {};
        return true;
    }
    treeDirty_ = false;
    const bool managerChanged = root_.windowManagerRuns != facts->windowManagerRuns;
    root_ = std::move(*facts);
    std::unordered_map<xcb_window_t, WindowRecord> known;
    for (const xcb_window_t id : root_.children) {
        auto found = windows_.extract(id);
        if (found.empty()) {
            known[id].id = id;
        } else {
            known.insert(std::move(found));
        }
    }
    windows_ = std::move(known);
    for (auto& [id, window] : windows_) {
        if (managerChanged) {
            loseClient(window);
        }
        // That a window manager has taken a window in hand shows in the tree.
        window.searchDue = window.searchDue || (!window.client && window.viewable);
    }
    return true;
}

bool WindowTable::readBasics() {
    auto dirty = select([](const WindowRecord& window) { return window.basicsDirty; });
    if (!dirty.empty()) {
        reader_.readBasics(dirty);
    }
    return !dirty.empty();
}

bool WindowTable::findClients() {
    auto due = select([](const WindowRecord& window) {
        return window.searchDue && !window.client && !window.inputOnly;
    });
    if (root_.windowManagerRuns) {
        if (!due.empty()) {
            reader_.findClients(due);
        }
        return !due.empty();
    }
    bool found = false;
    for (WindowRecord* const window : due) {
        if (window->viewable) {
            found = true;
            window->searchDue = false;
            if (!window->overrideRedirect) {
                window->client = window->id;
                window->detailsDirty = true;
            }
        }
    }
    return found;
}

bool WindowTable::readDetails() {
    auto dirty = select([](const WindowRecord& window) {
        return window.detailsDirty && !window.inputOnly && (window.viewable || window.client);
    });
    if (!dirty.empty()) {
        reader_.readDetails(dirty);
    }
    return !dirty.empty();
}

void WindowTable::handle(const xcb_generic_event_t& event) {
    const int type = typeOf(event);
    const bool ours = (type >= XCB_CREATE_NOTIFY && type <= XCB_CIRCULATE_NOTIFY) ||
                      type == XCB_PROPERTY_NOTIFY ||
                      type == connection_.extensions().shapeEvent + XCB_SHAPE_NOTIFY;
    if (!ours) {
        return;
    }
    changed();
    if (connection_.runLoop().now() - lastAsked_ > idleSeconds) {
        stopListening();
    } else if (type == XCB_PROPERTY_NOTIFY) {
        propertyChanged(eventAs<xcb_property_notify_event_t>(event));
    } else if (type == connection_.extensions().shapeEvent + XCB_SHAPE_NOTIFY) {
        shapeChanged(event);
    } else {
        handleStructure(event);
    }
}

void WindowTable::handleStructure(const xcb_generic_event_t& event) {
    const xcb_window_t root = connection_.root();
    switch (typeOf(event)) {
    case XCB_CREATE_NOTIFY:
        treeDirty_ = treeDirty_ || eventAs<xcb_create_notify_event_t>(event).parent == root;
        break;
    case XCB_DESTROY_NOTIFY:
        destroyed(eventAs<xcb_destroy_notify_event_t>(event));
        break;
    case XCB_MAP_NOTIFY:
        if (const auto& map = eventAs<xcb_map_notify_event_t>(event); map.event == root) {
            mapped(map.window, true);
        }
        break;
    case XCB_UNMAP_NOTIFY:
        if (const auto& unmap = eventAs<xcb_unmap_notify_event_t>(event);
            unmap.event == root && !isSynthetic(event)) {
            mapped(unmap.window, false);
        }
        break;
    case XCB_REPARENT_NOTIFY:
        reparented(eventAs<xcb_reparent_notify_event_t>(event));
        break;
    case XCB_CONFIGURE_NOTIFY:
        // A window manager tells clients their place on the root when it moves their frame; the
        // place within the frame is the same then.
        if (!isSynthetic(event)) {
            configured(eventAs<xcb_configure_notify_event_t>(event));
        }
        break;
    case XCB_GRAVITY_NOTIFY:
        if (auto* const window =
                recordOfClient(eventAs<xcb_gravity_notify_event_t>(event).window)) {
            window->detailsDirty = true;
        }
        break;
    case XCB_CIRCULATE_NOTIFY:
        treeDirty_ = true;
        break;
    default:
        break;
    }
}

void WindowTable::configured(const xcb_configure_notify_event_t& event) {
    if (event.event != connection_.root()) {
        if (auto* const window = recordOfClient(event.window)) {
            window->detailsDirty = true;
        }
        return;
    }
    WindowRecord* const window = recordOf(event.window);
    if (!window) {
        treeDirty_ = treeDirty_ || event.window != connection_.root();
        return;
    }
    const double border = 2.0 * event.border_width;
    window->borderWidth = event.border_width;
    window->rect = {static_cast<double>(event.x), static_cast<double>(event.y),
                    event.width + border, event.height + border};
    window->overrideRedirect = event.override_redirect != 0;
    const auto place = std::ranges::find(root_.children, event.window);
    const xcb_window_t below =
        place == root_.children.begin() || place == root_.children.end() ? 0 : *std::prev(place);
    treeDirty_ = treeDirty_ || below != event.above_sibling;
}

void WindowTable::mapped(xcb_window_t id, bool viewable) {
    WindowRecord* const window = recordOf(id);
    if (!window) {
        treeDirty_ = true;
        return;
    }
    window->viewable = viewable;
    if (viewable) {
        window->searchDue = true;
        window->detailsDirty = true;
    } else if (window->client == id && !root_.windowManagerRuns) {
        window->client.reset();
    }
}

void WindowTable::reparented(const xcb_reparent_notify_event_t& event) {
    treeDirty_ = true;
    if (WindowRecord* const window = recordOfClient(event.window)) {
        loseClient(*window);
    }
    if (event.parent != connection_.root()) {
        // The window manager may mark it as a client only later.
        reader_.watchProperties(event.window);
    }
}

void WindowTable::destroyed(const xcb_destroy_notify_event_t& event) {
    if (WindowRecord* const window = recordOfClient(event.window)) {
        loseClient(*window);
    }
    if (event.event == connection_.root()) {
        windows_.erase(event.window);
        treeDirty_ = true;
    }
}

void WindowTable::loseClient(WindowRecord& window) {
    window.client.reset();
    window.searchDue = true;
    window.detailsDirty = true;
}

bool WindowTable::isRelevant(xcb_atom_t property) const {
    return property == XCB_ATOM_WM_CLASS || std::ranges::any_of(relevantAtoms, [&](Atom atom) {
               return property == connection_.atom(atom);
           });
}

void WindowTable::propertyChanged(const xcb_property_notify_event_t& event) {
    if (event.window == connection_.root()) {
        treeDirty_ = treeDirty_ || event.atom == connection_.atom(Atom::netCurrentDesktop) ||
                     event.atom == connection_.atom(Atom::netSupportingWmCheck) ||
                     event.atom == connection_.atom(Atom::netWorkarea);
        return;
    }
    WindowRecord* window = recordOfClient(event.window);
    if (!window) {
        window = recordOf(event.window);
    }
    if (event.atom == connection_.atom(Atom::wmState)) {
        if (window) {
            loseClient(*window);
        } else {
            treeDirty_ = true;
        }
    } else if (window && isRelevant(event.atom)) {
        window->detailsDirty = true;
    }
}

void WindowTable::shapeChanged(const xcb_generic_event_t& event) {
    const auto& change = eventAs<xcb_shape_notify_event_t>(event);
    WindowRecord* const window = recordOf(change.affected_window);
    if (window && change.shape_kind == XCB_SHAPE_SK_INPUT) {
        window->basicsDirty = true;
    } else if (window && change.shape_kind == XCB_SHAPE_SK_BOUNDING) {
        window->shaped = change.shaped != 0;
    }
}

} // namespace lumetry::x11
