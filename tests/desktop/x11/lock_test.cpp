#include "x11_rig.h"

#include "platform/linux/lock/lock_services.h"
#include "rig/bus.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::desktop {
namespace {

constexpr Rect whole = {0, 0, 800, 600};
constexpr WindowOptions unmanaged = {.overrideRedirect = true};

/// A watch that counts how often it has said something new.
struct CountedWatch {
    explicit CountedWatch(std::unique_ptr<LockWatch> made) : watch(std::move(made)) {
        watch->onChange = [this] { ++changes; };
    }
    [[nodiscard]] bool locked() const { return watch->locked(); }

    std::unique_ptr<LockWatch> watch;
    int changes = 0;
};

TEST(X11Lock, IsAWindowThatHidesAScreenAndTakesThePointer) {
    X11Rig rig({.screens = {{400, 0, 400, 600}, {0, 0, 400, 600}}});
    const struct {
        const char* name;
        Rect rect;
        WindowOptions options;
        bool clickThrough;
        const char* type;
        bool locks;
    } cases[] = {
        {"over everything", whole, unmanaged, false, nullptr, true},
        {"over one screen", {0, 0, 400, 600}, unmanaged, false, nullptr, true},
        {"seen through",
         whole,
         {.overrideRedirect = true, .inputOnly = true},
         false,
         nullptr,
         true},
        {"a large menu", {0, 0, 399, 600}, unmanaged, false, nullptr, false},
        {"a film", whole, {}, false, nullptr, false},
        {"another overlay", whole, unmanaged, true, nullptr, false},
        {"a wallpaper", whole, unmanaged, false, "_NET_WM_WINDOW_TYPE_DESKTOP", false},
    };
    const CountedWatch watched(rig.x11().watchLock());
    for (const auto& one : cases) {
        const auto window = rig.foreignWindow(one.rect, one.options);
        if (one.clickThrough) {
            rig.emptyInputShape(window);
        }
        if (one.type) {
            rig.setAtoms(window, "_NET_WM_WINDOW_TYPE", {one.type});
        }
        rig.map(window);
        rig.loop.settle();
        EXPECT_EQ(watched.locked(), one.locks) << one.name;
        EXPECT_EQ(rig.x11().watchLock()->locked(), one.locks) << one.name << ", seen later";
        rig.destroy(window);
        rig.loop.settle();
        EXPECT_FALSE(watched.locked()) << one.name;
    }
    const auto own = rig.ownWindow(whole, unmanaged);
    rig.map(own);
    rig.loop.settle();
    EXPECT_FALSE(watched.locked());
    // Window managers have a window that catches the pointer where nothing else is.
    const auto managers = rig.foreignWindow(whole, {.overrideRedirect = true, .inputOnly = true});
    rig.setNumbers(rig.desktop.server().root(), "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW,
                   {managers});
    rig.map(managers);
    rig.loop.settle();
    EXPECT_FALSE(watched.locked());
}

TEST(X11Lock, LastsUntilTheLockerIsGone) {
    X11Rig rig;
    const auto picture = rig.foreignWindow(whole, unmanaged);
    rig.map(picture);
    CountedWatch watched(rig.x11().watchLock());
    EXPECT_TRUE(watched.locked()) << "nothing lies above it";
    rig.map(rig.foreignWindow({10, 10, 100, 100}));
    EXPECT_TRUE(rig.loop.runUntil([&] { return !watched.locked(); })) << "a mere background";

    const auto locker = rig.foreignWindow(whole, unmanaged);
    rig.map(locker);
    EXPECT_TRUE(rig.loop.runUntil([&] { return watched.locked(); }));
    // It has yet to notice that something has come up above it.
    rig.map(rig.foreignWindow({50, 50, 100, 100}));
    rig.map(rig.foreignWindow({90, 90, 100, 100}, unmanaged));
    rig.loop.settle();
    EXPECT_TRUE(watched.locked());
    rig.unmap(locker);
    EXPECT_TRUE(rig.loop.runUntil([&] { return !watched.locked(); }));
    EXPECT_EQ(watched.changes, 3);
}

TEST(X11Lock, IsTheServersScreenSaver) {
    X11Rig rig;
    CountedWatch watched(rig.x11().watchLock());
    EXPECT_FALSE(watched.locked());
    const auto force = [&](std::uint8_t mode) {
        xcb_force_screen_saver(rig.xcb(), mode);
        rig.desktop.server().sync();
    };
    force(XCB_SCREEN_SAVER_ACTIVE);
    EXPECT_TRUE(rig.loop.runUntil([&] { return watched.locked() && watched.changes == 1; }));
    EXPECT_TRUE(rig.x11().watchLock()->locked());
    force(XCB_SCREEN_SAVER_RESET);
    EXPECT_TRUE(rig.loop.runUntil([&] { return !watched.locked() && watched.changes == 2; }));
}

/// A service that says whether the screen is locked, in the manner of both that are known. It
/// answers on a thread of its own.
class MadeUpService {
public:
    MadeUpService(const std::string& address, const char* name, bool locked)
        : bus_(connectToBus(address)), locked_(locked) {
        g_dbus_connection_add_filter(bus_.get(), &MadeUpService::answer, this, nullptr);
        (void)call(*bus_, {"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                   "RequestName", g_variant_new("(su)", name, 0U));
    }

    void say(const char* path, const char* interface, const char* signal, bool locked,
             GVariant* arguments) {
        locked_ = locked;
        g_dbus_connection_emit_signal(bus_.get(), nullptr, path, interface, signal, arguments,
                                      nullptr);
    }

private:
    static GDBusMessage* answer(GDBusConnection* bus, GDBusMessage* message, gboolean incoming,
                                gpointer self) {
        const auto* const member = g_dbus_message_get_member(message);
        if (incoming == FALSE || !member ||
            g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
            return message;
        }
        const gboolean locked = static_cast<MadeUpService*>(self)->locked_ ? TRUE : FALSE;
        GDBusMessage* const reply = g_dbus_message_new_method_reply(message);
        const std::string_view asked = member;
        g_dbus_message_set_body(reply, asked == "GetActive" ? g_variant_new("(b)", locked)
                                       : asked == "GetSession"
                                           ? g_variant_new("(o)", "/session")
                                           : g_variant_new("(v)", g_variant_new_boolean(locked)));
        g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                       nullptr);
        g_object_unref(reply);
        g_object_unref(message);
        return nullptr;
    }

    std::shared_ptr<GDBusConnection> bus_;
    std::atomic<bool> locked_;
};

struct LockServicesRig : X11Rig {
    LockServicesRig() {
        setenv("DBUS_SESSION_BUS_ADDRESS", desktop.sessionBusAddress().c_str(), 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", desktop.sessionBusAddress().c_str(), 1);
    }
};

TEST(LockServices, HearTheDesktopsScreenSaver) {
    constexpr const char* name = "org.freedesktop.ScreenSaver";
    LockServicesRig rig;
    auto saver = std::make_unique<MadeUpService>(rig.desktop.sessionBusAddress(), name, true);
    CountedWatch watched(watchLockServices(rig.loop));
    EXPECT_TRUE(watched.locked());
    const auto say = [&](bool locked) {
        saver->say("/ScreenSaver", name, "ActiveChanged", locked,
                   g_variant_new("(b)", locked ? TRUE : FALSE));
    };
    say(false);
    EXPECT_TRUE(rig.loop.runUntil([&] { return !watched.locked() && watched.changes == 1; }));
    say(true);
    EXPECT_TRUE(rig.loop.runUntil([&] { return watched.locked() && watched.changes == 2; }));
    saver.reset();
    EXPECT_TRUE(rig.loop.runUntil([&] { return !watched.locked(); })) << "it is gone";
    saver = std::make_unique<MadeUpService>(rig.desktop.sessionBusAddress(), name, true);
    EXPECT_TRUE(rig.loop.runUntil([&] { return watched.locked(); })) << "started again";
}

TEST(LockServices, HearTheLoginSessionsHint) {
    LockServicesRig rig;
    MadeUpService login(rig.desktop.sessionBusAddress(), "org.freedesktop.login1", false);
    CountedWatch watched(watchLockServices(rig.loop));
    EXPECT_FALSE(watched.locked());
    for (const bool locked : {true, false}) {
        login.say("/session", "org.freedesktop.DBus.Properties", "PropertiesChanged", locked,
                  g_variant_new("(sa{sv}as)", "org.freedesktop.login1.Session", nullptr, nullptr));
        EXPECT_TRUE(rig.loop.runUntil([&] { return watched.locked() == locked; }));
    }
    EXPECT_EQ(watched.changes, 2);
}

TEST(LockServices, AreDoneWithoutWhereThereAreNone) {
    PollLoop loop;
    for (const char* const address : {"unix:path=/nowhere/bus", "no address"}) {
        setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
        EXPECT_FALSE(watchLockServices(loop)->locked());
    }
    LockServicesRig rig;
    const auto watch = watchLockServices(rig.loop);
    EXPECT_FALSE(watch->locked());
    rig.loop.settle();
    rig.desktop.stopSessionBus();
    EXPECT_GT(rig.loop.settle(), 0U);
    EXPECT_EQ(rig.loop.settle(), 0U) << "woken up by a bus that is no more";
}

} // namespace
} // namespace lumetry::desktop
