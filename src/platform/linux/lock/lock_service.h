#pragma once

#include "base/token.h"
#include "platform/linux/bus/bus.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <dbus/dbus.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetry {

struct UnrefBusMessage {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using BusMessage = std::unique_ptr<DBusMessage, UnrefBusMessage>;

/// Something on a bus that says whether the screen is locked: it is asked, and signals changes.
class LockService {
public:
    LockService(const LockService&) = delete;
    LockService& operator=(const LockService&) = delete;
    virtual ~LockService() = default;

    [[nodiscard]] bool locked() const { return locked_; }
    /// Waits until all that was asked has been answered, at most that long.
    void awaitAnswers(int milliseconds);

    /// Called whenever it says something else.
    std::function<void()> onChange;

protected:
    /// @param bus null when there is none: then it says nothing
    LockService(FileDescriptorWatcher& watcher, Bus bus);

    /// Has the bus hand over the signals that the rule describes.
    void listen(const std::string& rule);
    /// Sends a method call without parameters, or with texts.
    void ask(const char* name, const std::string& path, const char* interface, const char* method,
             const std::vector<const char*>& parameters = {});
    void setLocked(bool locked) { locked_ = locked; }

    /// What was asked is answered, and not by an error.
    virtual void answered(DBusMessage& answer) = 0;
    virtual void signalled(DBusMessage& signal) = 0;

private:
    /// Takes in what has arrived, waiting at most that long for something to arrive.
    void read(int milliseconds);
    void handle(DBusMessage& message);

    Bus bus_;
    int unanswered_ = 0;
    bool locked_ = false;
    Token readable_;
};

/// A boolean, as such or in a variant; absent when the message does not begin with one.
[[nodiscard]] std::optional<bool> booleanIn(DBusMessage& message);

} // namespace lumetry
