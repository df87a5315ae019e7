#include "platform/linux/atspi/bus/bus.h"

#include <atspi/atspi-constants.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

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

/// Waits at most that long for one of them to have something to read, or room for what waits to be
/// written.
void awaitAny(DBusConnection& bus, const std::vector<DirectConnections::Link>& links,
              int milliseconds) {
    std::vector<pollfd> awaited;
    awaited.reserve(links.size() + 1);
    const auto add = [&](DBusConnection& connection) {
        int descriptor = -1;
        if (dbus_connection_get_unix_fd(&connection, &descriptor) != FALSE) {
            const bool writes = dbus_connection_has_messages_to_send(&connection) != FALSE;
            awaited.push_back(
                {descriptor, static_cast<short>(writes ? POLLIN | POLLOUT : POLLIN), 0});
        }
        if (dbus_connection_get_dispatch_status(&connection) == DBUS_DISPATCH_DATA_REMAINS) {
            milliseconds = 0; // it has been read already
        }
    };
    add(bus);
    for (const DirectConnections::Link& link : links) {
        add(*link.connection);
    }
    poll(awaited.data(), awaited.size(), milliseconds);
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
    for (const DirectConnections::Link& link : direct_.links()) {
        abandon(*link.connection, nullptr);
    }
    direct_.clear();
    if (connection_) {
        abandon(*connection_, nullptr);
    }
    connection_.reset();
    overdueSince_.clear();
}

/// What was sent there is not answered any more.
void Bus::abandon(DBusConnection& connection, Batch* batch) {
    std::vector<Ticket> lost;
    const auto note = [&](const Ticket& ticket) {
        if (ticket.first == &connection) {
            lost.push_back(ticket);
        }
    };
    for (const auto& entry : continuations_) {
        note(entry.first);
    }
    if (batch != nullptr) {
        for (const auto& entry : batch->outstanding) {
            note(entry.first);
        }
    }
    for (const Ticket& ticket : lost) {
        settle(ticket, {Outcome::gone, nullptr}, batch);
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
        } else if (const auto ticket = isOverdue(*request) ? std::nullopt : post(*request)) {
            batch.outstanding.emplace(*ticket, batch.next);
        }
    }
}

std::optional<Bus::Ticket> Bus::post(DBusMessage& request) {
    const std::string application = dbus_message_get_destination(&request);
    DBusConnection* const direct = direct_.to(application);
    DBusConnection* const way = direct != nullptr ? direct : connection_.get();
    dbus_uint32_t serial = 0;
    if (way == nullptr || dbus_connection_send(way, &request, &serial) == FALSE) {
        return std::nullopt;
    }
    ++requests_;
    if (isConnected(connection_) && direct_.isWorthAsking(application)) {
        askForDirectConnection(application);
    }
    return Ticket(way, serial);
}

void Bus::askForDirectConnection(const std::string& application) {
    constexpr const char* root = "/org/a11y/atspi/accessible/root";
    send(methodCall({application, root}, ATSPI_DBUS_INTERFACE_APPLICATION,
                    "GetApplicationBusAddress"),
         [this, application](const Reply& reply) {
             if (const auto address = textOf(reply)) {
                 direct_.open(application, *address, watcher_, [this] {
                     read(nullptr, 0);
                     runContinuations();
                 });
             }
         });
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
    for (const auto& [ticket, place] : batch.outstanding) {
        overdueSince_.insert_or_assign(dbus_message_get_destination(batch.requests[place].get()),
                                       Clock::now());
    }
}

void Bus::send(Message request, Continuation continuation) {
    const bool able = request && connect() && !isOverdue(*request);
    const auto ticket = able ? post(*request) : std::nullopt;
    if (!ticket) {
        answered_.emplace_back(std::move(continuation), Reply());
        return;
    }
    if (continuations_.size() == mostContinuations) {
        continuations_.erase(continuations_.begin());
    }
    continuations_.emplace_back(*ticket, std::move(continuation));
    keepWatch();
}

/// Direct connections are watched for as long as they are there.
void Bus::keepWatch() {
    int descriptor = -1;
    if (!watch_ && dbus_connection_get_unix_fd(connection_.get(), &descriptor) != FALSE) {
        watch_ = watcher_.watchReadable(descriptor, [this] {
            read(nullptr, 0);
            runContinuations();
        });
    }
}

bool Bus::read(Batch* batch, int milliseconds) {
    if (!connection_) {
        return false;
    }
    const auto links = direct_.links();
    if (!links.empty()) {
        awaitAny(*connection_, links, std::exchange(milliseconds, 0));
    }
    for (const DirectConnections::Link& link : links) {
        if (!takeIn(*link.connection, link.application, batch, 0)) {
            abandon(*link.connection, batch);
            direct_.close(link.application);
        }
    }
    const bool connected = takeIn(*connection_, {}, batch, milliseconds);
    if (!connected) {
        disconnect();
    }
    return connected;
}

/// Takes in what has arrived on one connection, waiting at most that long.
/// @param application who is at its other end; empty for the bus
/// @return false when it is lost
bool Bus::takeIn(DBusConnection& connection, std::string_view application, Batch* batch,
                 int milliseconds) {
    const bool connected = dbus_connection_read_write(&connection, milliseconds) != FALSE;
    while (const Message message{dbus_connection_pop_message(&connection)}) {
        handle(connection, application, message, batch);
    }
    return connected;
}

void Bus::handle(DBusConnection& connection, std::string_view application, const Message& message,
                 Batch* batch) {
    const char* const sender = dbus_message_get_sender(message.get());
    if (sender != nullptr && application.empty()) {
        application = sender;
    }
    const auto overdue = overdueSince_.find(application);
    if (overdue != overdueSince_.end()) {
        overdueSince_.erase(overdue);
    }
    const dbus_uint32_t serial = dbus_message_get_reply_serial(message.get());
    if (serial == 0) {
        return;
    }
    const Outcome outcome = outcomeOf(*message);
    Reply reply{outcome, nullptr};
    if (outcome == Outcome::answered) {
        reply.message.reset(dbus_message_ref(message.get()), UnrefMessage());
    }
    settle({&connection, serial}, std::move(reply), batch);
}

/// Hands a reply to whoever waits for it.
void Bus::settle(const Ticket& ticket, Reply reply, Batch* batch) {
    if (batch != nullptr) {
        const auto place = batch->outstanding.find(ticket);
        if (place != batch->outstanding.end()) {
            batch->replies[place->second] = std::move(reply);
            batch->outstanding.erase(place);
            return;
        }
    }
    const auto waiting =
        std::ranges::find(continuations_, ticket, &std::pair<Ticket, Continuation>::first);
    if (waiting != continuations_.end()) {
        answered_.emplace_back(std::move(waiting->second), std::move(reply));
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
