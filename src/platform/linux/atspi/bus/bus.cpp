#include "platform/linux/atspi/bus/bus.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace lumetry::atspi {
namespace {

constexpr std::chrono::seconds reconnectInterval{1};
/// So that an answer to each always fits into the daemon's limits.
constexpr std::size_t mostOutstanding = 1000;
constexpr std::size_t mostContinuations = 1000;

Outcome outcomeOf(DBusMessage& message) {
    if (dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_METHOD_RETURN) {
        return Outcome::answered;
    }
    constexpr std::array<std::string_view, 4> goneErrors = {
        DBUS_ERROR_SERVICE_UNKNOWN, DBUS_ERROR_NAME_HAS_NO_OWNER, DBUS_ERROR_NO_REPLY,
        DBUS_ERROR_DISCONNECTED};
    const char* error = dbus_message_get_error_name(&message);
    return error != nullptr && std::ranges::find(goneErrors, error) != goneErrors.end()
               ? Outcome::gone
               : Outcome::refused;
}

int millisecondsUntil(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

} // namespace

bool Bus::connect() {
    if (isConnected(connection_)) {
        return true;
    }
    const auto now = Clock::now();
    if (triedAt_ && now - *triedAt_ < reconnectInterval) {
        return false;
    }
    triedAt_ = now;
    disconnect();
    connection_ = openAccessibilityBus(session_);
    generation_ += connection_ ? 1 : 0;
    return connection_ != nullptr;
}

void Bus::disconnect() {
    watch_.reset();
    connection_.reset();
    overdueSince_.clear();
    while (!continuations_.empty()) {
        finish(continuations_.begin()->first, {Outcome::gone, nullptr});
    }
}

std::vector<Reply> Bus::exchange(std::vector<Message> requests, Deadline deadline) {
    Batch batch;
    batch.replies.resize(requests.size());
    batch.requests = std::move(requests);
    // What came late is taken in first: it shows who has woken up.
    if (connect() && read(nullptr, 0)) {
        awaitReplies(batch, deadline);
    }
    unanswered_ += static_cast<std::uint64_t>(std::ranges::count(
        batch.replies, Outcome::silent, [](const Reply& reply) { return reply.outcome; }));
    runContinuations();
    return std::move(batch.replies);
}

Reply Bus::exchange(Message request, Deadline deadline) {
    std::vector<Message> requests;
    requests.push_back(std::move(request));
    return std::move(exchange(std::move(requests), deadline).front());
}

void Bus::awaitReplies(Batch& batch, Deadline deadline) {
    postMore(batch);
    if (batch.outstanding.empty()) {
        return;
    }
    ++waits_;
    while (!batch.outstanding.empty()) {
        const int milliseconds = millisecondsUntil(deadline);
        if (milliseconds == 0) {
            markOverdue(batch);
            return;
        }
        if (!read(&batch, milliseconds)) {
            return;
        }
        postMore(batch);
    }
}

void Bus::postMore(Batch& batch) {
    for (; batch.next < batch.requests.size() && batch.outstanding.size() < mostOutstanding;
         ++batch.next) {
        const Message& request = batch.requests[batch.next];
        if (!request) {
            batch.replies[batch.next].outcome = Outcome::refused;
        } else if (const auto serial = isOverdue(*request) ? std::nullopt : post(*request)) {
            batch.outstanding.emplace(*serial, batch.next);
        }
    }
}

std::optional<Bus::Serial> Bus::post(DBusMessage& request) {
    Serial serial = 0;
    if (!connection_ || dbus_connection_send(connection_.get(), &request, &serial) == FALSE) {
        return std::nullopt;
    }
    ++requests_;
    return serial;
}

bool Bus::isOverdue(const DBusMessage& request) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): libdbus's getters take no const
    const char* name = dbus_message_get_destination(const_cast<DBusMessage*>(&request));
    const auto known = overdueSince_.find(std::string_view(name));
    if (known == overdueSince_.end()) {
        return false;
    }
    if (Clock::now() - known->second < overdueInterval_) {
        return true;
    }
    overdueSince_.erase(known);
    return false;
}

void Bus::markOverdue(const Batch& batch) {
    for (const auto& [serial, place] : batch.outstanding) {
        overdueSince_.insert_or_assign(dbus_message_get_destination(batch.requests[place].get()),
                                       Clock::now());
    }
}

void Bus::send(Message request, Continuation continuation) {
    const bool able = request && connect() && !isOverdue(*request);
    const auto serial = able ? post(*request) : std::nullopt;
    if (!serial) {
        answered_.emplace_back(std::move(continuation), Reply());
        return;
    }
    if (continuations_.size() == mostContinuations) {
        continuations_.erase(continuations_.begin());
    }
    continuations_.emplace(*serial, std::move(continuation));
    int descriptor = -1;
    if (!watch_ && dbus_connection_get_unix_fd(connection_.get(), &descriptor) != FALSE) {
        watch_ = watcher_.watchReadable(descriptor, [this] {
            read(nullptr, 0);
            runContinuations();
        });
    }
}

bool Bus::read(Batch* batch, int milliseconds) {
    const bool connected = dbus_connection_read_write(connection_.get(), milliseconds) != 0;
    while (const Message message{dbus_connection_pop_message(connection_.get())}) {
        handle(message, batch);
    }
    if (!connected) {
        disconnect();
    }
    return connected;
}

void Bus::handle(const Message& message, Batch* batch) {
    if (const char* sender = dbus_message_get_sender(message.get())) {
        const auto overdue = overdueSince_.find(std::string_view(sender));
        if (overdue != overdueSince_.end()) {
            overdueSince_.erase(overdue);
        }
    }
    const Serial serial = dbus_message_get_reply_serial(message.get());
    if (serial == 0) {
        return;
    }
    const Outcome outcome = outcomeOf(*message);
    Reply reply{outcome, nullptr};
    if (outcome == Outcome::answered) {
        reply.message.reset(dbus_message_ref(message.get()), UnrefMessage());
    }
    if (batch != nullptr) {
        const auto place = batch->outstanding.find(serial);
        if (place != batch->outstanding.end()) {
            batch->replies[place->second] = std::move(reply);
            batch->outstanding.erase(place);
            return;
        }
    }
    finish(serial, reply);
}

void Bus::finish(Serial serial, const Reply& reply) {
    const auto waiting = continuations_.find(serial);
    if (waiting != continuations_.end()) {
        answered_.emplace_back(std::move(waiting->second), reply);
        continuations_.erase(waiting);
    }
}

void Bus::runContinuations() {
    while (!answered_.empty()) {
        const auto answered = std::exchange(answered_, {});
        for (const auto& [continuation, reply] : answered) {
            continuation(reply);
        }
    }
    if (continuations_.empty()) {
        watch_.reset();
    }
}

} // namespace lumetry::atspi
