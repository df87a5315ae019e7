#include "platform/linux/lock/lock_services.h"

#include "base/token.h"
#include "platform/linux/bus/connection.h"

#include <dbus/dbus.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumetry {
namespace {

/// How long a service that says nothing may hold up the start of the watch.
constexpr int patienceMilliseconds = 200;

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

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
    LockService(FileDescriptorWatcher& watcher, BusConnection bus);

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

    BusConnection bus_;
    int unanswered_ = 0;
    bool locked_ = false;
    Token readable_;
};

LockService::LockService(FileDescriptorWatcher& watcher, BusConnection bus) : bus_(std::move(bus)) {
    int descriptor = -1;
    if (bus_ && dbus_connection_get_unix_fd(bus_.get(), &descriptor) != FALSE) {
        readable_ = watcher.watchReadable(descriptor, [this] { read(0); });
    }
}

void LockService::awaitAnswers(int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (bus_ && unanswered_ > 0) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return;
        }
        read(static_cast<int>(left.count()));
    }
}

void LockService::listen(const std::string& rule) {
    if (bus_) {
        dbus_bus_add_match(bus_.get(), rule.c_str(), nullptr);
    }
}

void LockService::ask(const char* name, const std::string& path, const char* interface,
                      const char* method, const std::vector<const char*>& parameters) {
    const BusMessage call(dbus_message_new_method_call(name, path.c_str(), interface, method));
    if (!bus_ || !call) {
        return;
    }
    for (const char* parameter : parameters) {
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &parameter, DBUS_TYPE_INVALID);
    }
    // Who does not run has locked nothing.
    dbus_message_set_auto_start(call.get(), FALSE);
    unanswered_ += dbus_connection_send(bus_.get(), call.get(), nullptr) != FALSE ? 1 : 0;
    dbus_connection_flush(bus_.get());
}

void LockService::read(int milliseconds) {
    const bool before = locked_;
    // Sending may have taken in answers already.
    const bool arrived =
        dbus_connection_get_dispatch_status(bus_.get()) == DBUS_DISPATCH_DATA_REMAINS;
    const bool connected =
        dbus_connection_read_write(bus_.get(), arrived ? 0 : milliseconds) != FALSE;
    while (const BusMessage message{dbus_connection_pop_message(bus_.get())}) {
        handle(*message);
    }
    if (!connected) {
        // Without its bus nobody says that the screen is unlocked.
        readable_.reset();
        bus_.reset();
    }
    if (locked_ != before && onChange) {
        onChange();
    }
}

void LockService::handle(DBusMessage& message) {
    switch (dbus_message_get_type(&message)) {
    case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        --unanswered_;
        answered(message);
        break;
    case DBUS_MESSAGE_TYPE_ERROR:
        --unanswered_;
        break;
    case DBUS_MESSAGE_TYPE_SIGNAL:
        signalled(message);
        break;
    default:
        break;
    }
}

/// A boolean, as such or in a variant; absent when the message does not begin with one.
std::optional<bool> booleanIn(DBusMessage& message) {
    DBusMessageIter value;
    if (dbus_message_iter_init(&message, &value) == FALSE) {
        return std::nullopt;
    }
    if (dbus_message_iter_get_arg_type(&value) == DBUS_TYPE_VARIANT) {
        DBusMessageIter inside;
        dbus_message_iter_recurse(&value, &inside);
        value = inside;
    }
    if (dbus_message_iter_get_arg_type(&value) != DBUS_TYPE_BOOLEAN) {
        return std::nullopt;
    }
    dbus_bool_t known = FALSE;
    dbus_message_iter_get_basic(&value, &known);
    return known != FALSE;
}

/// The screen saver of a desktop environment.
class ScreenSaverService final : public LockService {
public:
    explicit ScreenSaverService(FileDescriptorWatcher& watcher)
        : LockService(watcher, openBus(sessionBusAddress())) {
        listen(std::string("type='signal',sender='") + name + "',interface='" + name +
               "',member='ActiveChanged'");
        listen(std::string("type='signal',sender='org.freedesktop.DBus',"
                           "member='NameOwnerChanged',arg0='") +
               name + "'");
        askNow();
    }

private:
    static constexpr const char* name = "org.freedesktop.ScreenSaver";

    void askNow() { ask(name, "/org/freedesktop/ScreenSaver", name, "GetActive"); }
    void answered(DBusMessage& answer) override { setLocked(booleanIn(answer).value_or(locked())); }
    void signalled(DBusMessage& signal) override {
        if (dbus_message_is_signal(&signal, name, "ActiveChanged") != FALSE) {
            setLocked(booleanIn(signal).value_or(locked()));
        } else if (dbus_message_has_member(&signal, "NameOwnerChanged") != FALSE) {
            setLocked(false);
            askNow();
        }
    }
};

/// The login session of this process, as logind knows it.
class LoginSessionService final : public LockService {
public:
    explicit LoginSessionService(FileDescriptorWatcher& watcher)
        : LockService(watcher, openBus(systemBusAddress())) {
        ask(name, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "GetSession",
            {"auto"});
    }

private:
    static constexpr const char* name = "org.freedesktop.login1";

    void askNow() {
        ask(name, session_, propertiesInterface, "Get",
            {"org.freedesktop.login1.Session", "LockedHint"});
    }
    void answered(DBusMessage& answer) override {
        const char* path = nullptr;
        if (dbus_message_get_args(&answer, nullptr, DBUS_TYPE_OBJECT_PATH, &path,
                                  DBUS_TYPE_INVALID) == FALSE) {
            setLocked(booleanIn(answer).value_or(locked()));
            return;
        }
        session_ = path;
        listen(std::string("type='signal',sender='") + name + "',interface='" +
               propertiesInterface + "',member='PropertiesChanged',path='" + session_ + "'");
        askNow();
    }
    void signalled(DBusMessage& signal) override {
        if (dbus_message_is_signal(&signal, propertiesInterface, "PropertiesChanged") != FALSE) {
            askNow();
        }
    }

    std::string session_; ///< its object
};

class LockServices final : public LockWatch {
public:
    explicit LockServices(FileDescriptorWatcher& watcher)
        : screenSaver_(watcher), loginSession_(watcher) {
        for (LockService* const service : {static_cast<LockService*>(&screenSaver_),
                                           static_cast<LockService*>(&loginSession_)}) {
            service->awaitAnswers(patienceMilliseconds);
            service->onChange = [this] {
                if (onChange) {
                    onChange();
                }
            };
        }
    }
    [[nodiscard]] bool locked() const override {
        return screenSaver_.locked() || loginSession_.locked();
    }

private:
    ScreenSaverService screenSaver_;
    LoginSessionService loginSession_;
};

} // namespace

std::unique_ptr<LockWatch> watchLockServices(FileDescriptorWatcher& watcher) {
    return std::make_unique<LockServices>(watcher);
}

} // namespace lumetry
