#pragma once

#include "base/token.h"
#include "platform/linux/atspi/bus/connection.h"
#include "platform/linux/atspi/bus/deadline.h"
#include "platform/linux/atspi/bus/direct_connections.h"
#include "platform/linux/atspi/bus/message.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumetry::atspi {

/// The accessibility bus: requests to other applications, sent together and waited for once. It is
/// connected when it is first needed, and again after it went away and came back. With applications
/// that are asked much and allow it, it goes on directly, past the bus.
///
/// An application that has let a deadline pass is not asked again until it has said something or a
/// while has passed, so that one that stands still holds up one exchange, not every one.
class Bus {
public:
    using Continuation = std::function<void(const Reply&)>;

    /// @param overdueInterval how long an application that has let a deadline pass is left alone
    explicit Bus(FileDescriptorWatcher& watcher,
                 Clock::duration overdueInterval = std::chrono::seconds(1))
        : watcher_(watcher), overdueInterval_(overdueInterval) {}
    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus() = default;

    /// Connects if need be; whether there is a connection.
    bool connect();
    /// Counts the connections made: what was learnt on an earlier one is of no use any more.
    [[nodiscard]] std::uint64_t generation() const { return generation_; }
    [[nodiscard]] SessionBus& session() { return session_; }

    /// Sends all requests, then waits until each has its reply or the time is over.
    /// @param requests null ones are refused
    /// @return one reply for each request, in their order
    [[nodiscard]] std::vector<Reply> exchange(std::vector<Message> requests, Deadline deadline);
    [[nodiscard]] Reply exchange(Message request, Deadline deadline);
    /// Sends a request without waiting. The continuation runs with the reply, from the main loop or
    /// at the end of a later exchange; it may send, but not exchange. Of very many that stay
    /// unanswered the oldest are given up.
    void send(Message request, Continuation continuation);

    /// How many requests have been sent since the start.
    [[nodiscard]] std::uint64_t requests() const { return requests_; }
    /// How many requests of exchanges have gone without a reply since the start.
    [[nodiscard]] std::uint64_t unanswered() const { return unanswered_; }
    /// How many exchanges have waited since the start.
    [[nodiscard]] std::uint64_t waits() const { return waits_; }

private:
    /// Where a request was sent, and its number there.
    using Ticket = std::pair<DBusConnection*, dbus_uint32_t>;
    /// One exchange on its way.
    struct Batch {
        std::vector<Message> requests;
        std::vector<Reply> replies;
        std::size_t next = 0;                      ///< the first one not looked at yet
        std::map<Ticket, std::size_t> outstanding; ///< to the request's place
    };

    [[nodiscard]] bool isOverdue(const DBusMessage& request);
    void markOverdue(const Batch& batch);
    [[nodiscard]] std::optional<Ticket> post(DBusMessage& request);
    void askForDirectConnection(const std::string& application);
    void postMore(Batch& batch);
    void awaitReplies(Batch& batch, Deadline deadline);
    /// Takes in what has arrived, waiting at most that long for something to arrive.
    /// @return false when the connection is lost
    bool read(Batch* batch, int milliseconds);
    bool takeIn(DBusConnection& connection, std::string_view application, Batch* batch,
                int milliseconds);
    void handle(DBusConnection& connection, std::string_view application, const Message& message,
                Batch* batch);
    void settle(const Ticket& ticket, Reply reply, Batch* batch);
    void abandon(DBusConnection& connection, Batch* batch);
    void keepWatch();
    void disconnect();
    void runContinuations();

    FileDescriptorWatcher& watcher_;
    Clock::duration overdueInterval_;
    SessionBus session_;
    BusConnection connection_;
    std::optional<Clock::time_point> triedAt_;
    std::uint64_t generation_ = 0;
    std::uint64_t requests_ = 0;
    std::uint64_t waits_ = 0;
    std::uint64_t unanswered_ = 0;
    std::map<std::string, Clock::time_point, std::less<>> overdueSince_; ///< by connection name
    std::vector<std::pair<Ticket, Continuation>> continuations_;         ///< oldest first
    std::vector<std::pair<Continuation, Reply>> answered_;               ///< to be continued
    Token watch_;                                                        ///< while any continues
    DirectConnections direct_;
};

} // namespace lumetry::atspi
