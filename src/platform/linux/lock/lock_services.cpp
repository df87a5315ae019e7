#include "platform/linux/lock/lock_services.h"

#include "platform/linux/bus/bus.h"
#include "platform/linux/lock/lock_service.h"

namespace lumetry {
namespace {

/// How long a service that says nothing may hold up the start of the watch.
constexpr int patienceMilliseconds = 200;

constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

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
