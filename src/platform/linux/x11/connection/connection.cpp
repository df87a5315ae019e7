#include "platform/linux/x11/connection/connection.h"

#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/res.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <sys/socket.h>

#include <string_view>
#include <utility>
#include <vector>

namespace lumetry::x11 {
namespace {

bool atLeast(std::uint32_t major, std::uint32_t minor, std::uint32_t wantedMajor,
             std::uint32_t wantedMinor) {
    return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
}

/// Null when the server does not have it.
const xcb_query_extension_reply_t* presentExtension(xcb_connection_t* connection,
                                                    xcb_extension_t& extension) {
    const auto* const data = xcb_get_extension_data(connection, &extension);
    return data && data->present != 0 ? data : nullptr;
}

const xcb_screen_t* screenOf(const xcb_setup_t* setup, int number) {
    auto iterator = xcb_setup_roots_iterator(setup);
    for (; iterator.rem > 0; xcb_screen_next(&iterator), --number) {
        if (number == 0) {
            return iterator.data;
        }
    }
    return nullptr;
}

/// Whether each pixel holds its own red, green and blue rather than a place in a palette.
bool hasTrueColors(const xcb_screen_t& screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == screen.root_visual) {
                return visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR ||
                       visual.data->_class == XCB_VISUAL_CLASS_DIRECT_COLOR;
            }
        }
    }
    return false;
}

std::string_view nameOf(const xcb_randr_get_output_info_reply_t& output) {
    // NOLINTNEXTLINE(*-reinterpret-cast): a text of bytes
    return {reinterpret_cast<const char*>(xcb_randr_get_output_info_name(&output)),
            output.name_len};
}

/// Whether the connection ends on this machine, so that file descriptors can go through it.
bool isLocal(int fileDescriptor) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    const bool known =
        getsockname(fileDescriptor, reinterpret_cast<sockaddr*>(&address), // NOLINT(*-cast)
                    &size) == 0;
    return known && address.ss_family == AF_UNIX;
}

} // namespace

std::unique_ptr<Connection> Connection::open(FileDescriptorWatcher& watcher, RunLoop& runLoop,
                                             const std::string& display, std::string& problem) {
    std::unique_ptr<Connection> connection(new Connection(watcher, runLoop, display));
    if (!connection->connect(problem)) {
        return nullptr;
    }
    connection->readable_ =
        watcher.watchReadable(xcb_get_file_descriptor(connection->get()),
                              [connection = connection.get()] { connection->dispatch(); });
    return connection;
}

bool Connection::connect(std::string& problem) {
    connection_.reset(xcb_connect(display_.c_str(), &screenNumber_));
    if (xcb_connection_has_error(get()) == 0) {
        screen_ = screenOf(xcb_get_setup(get()), screenNumber_);
    }
    if (!screen_) {
        problem = "The display " + display_ +
                  " cannot be reached: check that DISPLAY names a running X server that this "
                  "user may use.";
        return false;
    }
    atoms_ = intern(atomNames);
    const std::string missing = queryExtensions();
    if (!missing.empty()) {
        problem = "The X server of the display " + display_ + " lacks " + missing +
                  ": use a server that has it switched on.";
        return false;
    }
    problem = screenProblem();
    return problem.empty();
}

std::string Connection::screenProblem() {
    if (isWaylandsServer()) {
        return std::string(waylandProblem);
    }
    if (!hasTrueColors(*screen_)) {
        return "The screen has only " + std::to_string(screen_->root_depth) +
               "-bit colours from a palette: start the X server with 24-bit colours.";
    }
    return "";
}

bool Connection::isWaylandsServer() {
    auto* const c = get();
    constexpr std::string_view name = "XWAYLAND";
    const auto extension = xcb_query_extension(c, name.size(), name.data());
    const bool hasOutputs = presentExtension(c, xcb_randr_id) != nullptr;
    const auto resources = hasOutputs ? xcb_randr_get_screen_resources_current(c, root())
                                      : xcb_randr_get_screen_resources_current_cookie_t{};
    const auto answer = reply(xcb_query_extension_reply, extension);
    const auto outputs =
        hasOutputs ? reply(xcb_randr_get_screen_resources_current_reply, resources) : nullptr;
    if ((answer && answer->present != 0) || !outputs) {
        return answer && answer->present != 0;
    }
    // Older ones lack the extension and are known by their screens' names.
    std::vector<xcb_randr_get_output_info_cookie_t> requests;
    const auto* const ids = xcb_randr_get_screen_resources_current_outputs(outputs.get());
    const int count = xcb_randr_get_screen_resources_current_outputs_length(outputs.get());
    requests.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        requests.push_back(xcb_randr_get_output_info(c, ids[i], outputs->config_timestamp));
    }
    bool found = false;
    for (const auto& request : requests) {
        const auto output = reply(xcb_randr_get_output_info_reply, request);
        found = found || (output && nameOf(*output).starts_with(name));
    }
    return found;
}

std::string Connection::queryExtensions() {
    auto* const c = get();
    for (auto* const extension :
         {&xcb_input_id, &xcb_shape_id, &xcb_xfixes_id, &xcb_randr_id, &xcb_res_id,
          &xcb_composite_id, &xcb_render_id, &xcb_shm_id, &xcb_screensaver_id}) {
        xcb_prefetch_extension_data(c, extension);
    }
    xcb_prefetch_maximum_request_length(c);
    ++roundTrips_;
    maximumRequestSize_ = std::size_t{xcb_get_maximum_request_length(c)} * 4;
    std::string missing = queryNeededExtensions();
    if (missing.empty()) {
        queryWelcomeExtensions();
        queryCaptureExtensions();
    }
    return missing;
}

std::string Connection::queryNeededExtensions() {
    auto* const c = get();
    const auto* const input = presentExtension(c, xcb_input_id);
    const auto* const shape = presentExtension(c, xcb_shape_id);
    const auto* const fixes = presentExtension(c, xcb_xfixes_id);
    if (!input || !shape || !fixes) {
        return !input ? "XInput 2" : !shape ? "SHAPE" : "XFIXES";
    }
    extensions_.inputOpcode = input->major_opcode;
    extensions_.shapeEvent = shape->first_event;
    extensions_.fixesEvent = fixes->first_event;
    const auto inputCookie = xcb_input_xi_query_version(c, 2, 2);
    const auto fixesCookie = xcb_xfixes_query_version(c, 5, 0);
    const auto inputVersion = reply(xcb_input_xi_query_version_reply, inputCookie);
    const auto fixesVersion = reply(xcb_xfixes_query_version_reply, fixesCookie);
    // Raw events come during another client's grab from 2.1 on, regions from 2.0 on.
    if (!inputVersion || !atLeast(inputVersion->major_version, inputVersion->minor_version, 2, 1)) {
        return "XInput 2.1";
    }
    return fixesVersion && fixesVersion->major_version >= 2 ? std::string() : "XFIXES 2";
}

void Connection::queryWelcomeExtensions() {
    auto* const c = get();
    const auto* const randr = presentExtension(c, xcb_randr_id);
    const auto* const screenSaver = presentExtension(c, xcb_screensaver_id);
    const bool hasResource = presentExtension(c, xcb_res_id) != nullptr;
    extensions_.screenSaver = screenSaver != nullptr;
    extensions_.saverEvent = screenSaver ? screenSaver->first_event : std::uint8_t{0};
    const auto randrCookie =
        randr ? xcb_randr_query_version(c, 1, 5) : xcb_randr_query_version_cookie_t{};
    const auto resourceCookie =
        hasResource ? xcb_res_query_version(c, 1, 2) : xcb_res_query_version_cookie_t{};
    if (randr) {
        extensions_.monitorsEvent = randr->first_event;
        const auto version = reply(xcb_randr_query_version_reply, randrCookie);
        extensions_.monitors =
            version && atLeast(version->major_version, version->minor_version, 1, 5);
    }
    if (hasResource) {
        const auto version = reply(xcb_res_query_version_reply, resourceCookie);
        extensions_.resource =
            version && atLeast(version->server_major, version->server_minor, 1, 2);
    }
}

void Connection::queryCaptureExtensions() {
    auto* const c = get();
    const bool hasComposite = presentExtension(c, xcb_composite_id) != nullptr;
    const bool hasRender = presentExtension(c, xcb_render_id) != nullptr;
    const bool hasSharedMemory =
        presentExtension(c, xcb_shm_id) != nullptr && isLocal(xcb_get_file_descriptor(c));
    const auto composite = hasComposite ? xcb_composite_query_version(c, 0, 4)
                                        : xcb_composite_query_version_cookie_t{};
    const auto render =
        hasRender ? xcb_render_query_version(c, 0, 11) : xcb_render_query_version_cookie_t{};
    const auto sharedMemory =
        hasSharedMemory ? xcb_shm_query_version(c) : xcb_shm_query_version_cookie_t{};
    if (hasComposite) {
        const auto version = reply(xcb_composite_query_version_reply, composite);
        extensions_.composite =
            version && atLeast(version->major_version, version->minor_version, 0, 4);
    }
    if (hasRender) {
        const auto version = reply(xcb_render_query_version_reply, render);
        extensions_.render =
            version && atLeast(version->major_version, version->minor_version, 0, 10);
    }
    if (hasSharedMemory) {
        const auto version = reply(xcb_shm_query_version_reply, sharedMemory);
        extensions_.sharedMemory =
            version && atLeast(version->major_version, version->minor_version, 1, 2);
    }
}

std::vector<xcb_atom_t> Connection::intern(std::span<const std::string_view> names) {
    ++roundTrips_;
    auto atoms = internAtoms(get(), names);
    keepQueuedEvents();
    return atoms;
}

bool Connection::isOwnResource(std::uint32_t id) const {
    return makerOf(id) == xcb_get_setup(get())->resource_id_base;
}

bool Connection::isLost() const {
    return xcb_connection_has_error(get()) != 0;
}

std::uint32_t Connection::makerOf(std::uint32_t id) const {
    return id & ~xcb_get_setup(get())->resource_id_mask;
}

void* Connection::waitForReply(unsigned sequence) {
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (isLost()) {
        return nullptr;
    }
    xcb_flush(get());
    if (xcb_poll_for_reply(get(), sequence, &answer, &error) == 0) {
        ++roundTrips_;
        answer = xcb_wait_for_reply(get(), sequence, &error);
    }
    Reply<xcb_generic_error_t> owned(error);
    // Events that arrive before the reply are read with it, and the descriptor says nothing of
    // them.
    keepQueuedEvents();
    return answer;
}

bool Connection::failed(xcb_void_cookie_t cookie) {
    const Reply<xcb_generic_error_t> error(xcb_request_check(get(), cookie));
    keepQueuedEvents();
    return error || isLost();
}

void Connection::flush() {
    xcb_flush(get());
    keepQueuedEvents();
}

void Connection::keepQueuedEvents() {
    while (auto* const event = xcb_poll_for_queued_event(get())) {
        pending_.emplace_back(event);
    }
    const bool somethingToDo = !pending_.empty() || (isLost() && !lossReported_);
    if (somethingToDo && !dispatching_ && !dispatchScheduled_) {
        dispatchScheduled_ = true;
        runLoop_.async(lifetime_.guard([this] {
            dispatchScheduled_ = false;
            dispatch();
        }));
    }
}

void Connection::readEvents() {
    while (auto* const event = xcb_poll_for_event(get())) {
        pending_.emplace_back(event);
    }
}

void Connection::dispatch() {
    if (dispatching_) {
        return;
    }
    dispatching_ = true;
    readEvents();
    for (const auto& event : std::exchange(pending_, {})) {
        // Type 0 is the error of a request without a reply: a window has vanished.
        if (typeOf(*event) != 0) {
            eventHandlers_.call(*event);
        }
    }
    batchHandlers_.call();
    dispatching_ = false;
    flush();
    if (isLost()) {
        lose();
    }
}

void Connection::lose() {
    if (std::exchange(lossReported_, true)) {
        return;
    }
    // The descriptor of a closed connection is readable for ever.
    readable_.reset();
    if (onLost) {
        onLost();
    }
}

Token Connection::selectOnRoot(std::uint32_t eventMask) {
    rootWishes_.insert(eventMask);
    applyRootWishes();
    return Token(lifetime_.guard([this, eventMask] {
        rootWishes_.erase(rootWishes_.find(eventMask));
        applyRootWishes();
    }));
}

void Connection::applyRootWishes() {
    std::uint32_t all = 0;
    for (const std::uint32_t wish : rootWishes_) {
        all |= wish;
    }
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &all);
    flush();
}

} // namespace lumetry::x11
