#include "platform/linux/x11/input/freed_grabs.h"

#include <xcb/record.h>
#include <xcb/xcbext.h>

#include <utility>

namespace lumetry::x11 {

FreedGrabs::FreedGrabs(Connection& connection, std::function<void()> handler)
    : connection_(connection), handler_(std::move(handler)),
      recording_(xcb_connect(connection.display().c_str(), nullptr)) {
    const auto* const extension = xcb_get_extension_data(recording_.get(), &xcb_record_id);
    if (extension != nullptr && extension->present != 0) {
        record();
    }
}

FreedGrabs::~FreedGrabs() {
    readable_.reset();
    if (context_ != 0) {
        // The server does not listen to the connection that it records for.
        xcb_record_free_context(connection_.get(), context_);
        connection_.flush();
    }
}

void FreedGrabs::record() {
    xcb_record_range_t wish{};
    wish.core_requests = {XCB_UNGRAB_KEY, XCB_UNGRAB_KEY};
    wish.client_died = 1;
    const xcb_record_client_spec_t clients = XCB_RECORD_CS_ALL_CLIENTS;
    context_ = xcb_generate_id(recording_.get());
    xcb_record_create_context(recording_.get(), context_, 0, 1, 1, &clients, &wish);
    request_ = xcb_record_enable_context(recording_.get(), context_).sequence;
    xcb_flush(recording_.get());
    readable_ = connection_.watcher().watchReadable(xcb_get_file_descriptor(recording_.get()),
                                                    [this] { read(); });
}

void FreedGrabs::read() {
    bool told = false;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    while (xcb_poll_for_reply(recording_.get(), request_, &answer, &error) != 0) {
        const Reply<void> reply(answer);
        const Reply<xcb_generic_error_t> failure(error);
        if (!reply) {
            // The descriptor of a connection that has ended is readable for ever.
            readable_.reset();
            break;
        }
        told = true;
    }
    if (told) {
        const auto handler = handler_;
        handler();
    }
}

} // namespace lumetry::x11
