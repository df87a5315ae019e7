#pragma once

#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/bus/connection.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

#include <functional>
#include <string>

namespace lumetry {

/// Has what arrives on a connection taken in on the main thread. While the connection waits for an
/// answer, it takes other messages from its socket, which does not tell of them any more: who uses
/// it does so through this.
class BusReader {
public:
    /// @param read takes in what has arrived; it may destroy the reader
    BusReader(DBusConnection& bus, FileDescriptorWatcher& watcher, RunLoop& runLoop,
              std::function<void()> read);
    BusReader(const BusReader&) = delete;
    BusReader& operator=(const BusReader&) = delete;
    ~BusReader() = default;

    /// The answer to a call, for which it waits so long; null when it is an error, or none comes.
    /// @param error what went wrong, if that is of interest
    [[nodiscard]] BusMessage answerTo(const BusMessage& call, int milliseconds,
                                      DBusError* error = nullptr);
    /// Sends a message that nothing answers.
    void send(const BusMessage& message);
    /// Has the bus hand over the signals that the rule describes.
    void listen(const std::string& rule);

private:
    void readRest();

    DBusConnection& bus_;
    RunLoop& runLoop_;
    std::function<void()> read_;
    Token readable_;
    bool readsRest_ = false; ///< a task is waiting to
    Lifetime lifetime_;
};

/// Who has a well-known name of a bus.
class BusNameOwner {
public:
    /// Asks the bus, and has it tell of changes.
    BusNameOwner(BusReader& reader, std::string name);

    /// Takes in that the name has another owner, or none. False when the message says something
    /// else.
    bool take(DBusMessage& message);
    [[nodiscard]] bool isThere() const { return !owner_.empty(); }
    [[nodiscard]] bool hasSent(DBusMessage& message) const;

private:
    std::string name_;
    std::string owner_; ///< its unique name
};

} // namespace lumetry
