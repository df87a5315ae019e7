#include "platform/linux/wayland/keys/modifier_keys.h"

#include "support/fake_linux/poll_loop.h"

#include <gtest/gtest.h>
#include <keystate-client-protocol.h>
#include <wayland-server.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace lumetry::wayland {
namespace {

using test::PollLoop;

/// A compositor that tells nothing but the state of keys.
class KeyStateCompositor {
public:
    explicit KeyStateCompositor(std::uint32_t version) {
        std::string folder =
            (std::filesystem::temp_directory_path() / "lumetry-keys-XXXXXX").string();
        folder_ = mkdtemp(folder.data());
        setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
        wl_display_add_socket(display_, "keys");
        wl_global_create(display_, &org_kde_kwin_keystate_interface, static_cast<int>(version),
                         this,
                         [](wl_client* client, void* self, std::uint32_t bound, std::uint32_t id) {
                             static_cast<KeyStateCompositor*>(self)->bind(client, bound, id);
                         });
        thread_ = std::thread([this] { run(); });
    }
    ~KeyStateCompositor() {
        ends_ = true;
        thread_.join();
        wl_display_destroy_clients(display_);
        wl_display_destroy(display_);
        std::filesystem::remove_all(folder_);
    }
    KeyStateCompositor(const KeyStateCompositor&) = delete;
    KeyStateCompositor& operator=(const KeyStateCompositor&) = delete;

    void tell(std::uint32_t key, std::uint32_t state) {
        const std::lock_guard lock(mutex_);
        toTell_.emplace_back(key, state);
    }
    [[nodiscard]] int listeners() const { return listeners_; }

private:
    void bind(wl_client* client, std::uint32_t version, std::uint32_t id) {
        static const struct {
            void (*fetchStates)(wl_client*, wl_resource*);
            void (*destroy)(wl_client*, wl_resource*);
        } requests = {[](wl_client*, wl_resource* resource) {
                          // Shift has been down before anybody asked.
                          wl_resource_post_event(resource, 0, ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT,
                                                 ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED);
                      },
                      [](wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }};
        listener_ = wl_resource_create(client, &org_kde_kwin_keystate_interface,
                                       static_cast<int>(version), id);
        ++listeners_;
        wl_resource_set_implementation(listener_, &requests, this, [](wl_resource* resource) {
            auto& self = *static_cast<KeyStateCompositor*>(wl_resource_get_user_data(resource));
            self.listener_ = nullptr;
            --self.listeners_;
        });
    }

    void run() {
        constexpr int pauseMilliseconds = 5;
        while (!ends_) {
            wl_event_loop_dispatch(wl_display_get_event_loop(display_), pauseMilliseconds);
            const std::lock_guard lock(mutex_);
            for (const auto& [key, state] : std::exchange(toTell_, {})) {
                if (listener_ != nullptr) {
                    wl_resource_post_event(listener_, 0, key, state);
                }
            }
            wl_display_flush_clients(display_);
        }
    }

    std::filesystem::path folder_;
    wl_display* display_ = wl_display_create();
    wl_resource* listener_ = nullptr;
    std::atomic<int> listeners_ = 0;
    std::atomic<bool> ends_ = false;
    std::mutex mutex_;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> toTell_;
    std::thread thread_;
};

TEST(ModifierKeys, AreListenedToWhileSomebodyWatches) {
    KeyStateCompositor compositor(5);
    PollLoop loop;
    std::string problem;
    const auto connection = Connection::open(loop, loop, "keys", problem);
    ASSERT_TRUE(connection) << problem;
    ModifierKeys keys(*connection);
    EXPECT_TRUE(keys.areTold());
    connection->roundTrip();
    EXPECT_EQ(compositor.listeners(), 0);

    int changes = 0;
    Token first = keys.watch([&] { ++changes; });
    Token second = keys.watch([] {});
    EXPECT_TRUE(loop.runUntil([&] { return keys.down() == modifierShift; }));
    EXPECT_EQ(compositor.listeners(), 1);
    const struct {
        std::uint32_t key;
        std::uint32_t state;
        ModifierFlags expected;
    } steps[] = {
        {ORG_KDE_KWIN_KEYSTATE_KEY_ALT, ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED,
         modifierShift | modifierOption},
        {ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED, modifierOption},
        {ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, ORG_KDE_KWIN_KEYSTATE_STATE_LATCHED,
         modifierOption | modifierControl},
        {ORG_KDE_KWIN_KEYSTATE_KEY_META, ORG_KDE_KWIN_KEYSTATE_STATE_LOCKED,
         modifierOption | modifierControl | modifierCommand},
    };
    for (const auto& [key, state, expected] : steps) {
        compositor.tell(key, state);
        EXPECT_TRUE(loop.runUntil([&, wanted = expected] { return keys.down() == wanted; }));
    }
    EXPECT_EQ(changes, 5);
    // The other Alt key, a key that locks and one that nobody knows yet change nothing.
    compositor.tell(ORG_KDE_KWIN_KEYSTATE_KEY_ALTGR, ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED);
    compositor.tell(ORG_KDE_KWIN_KEYSTATE_KEY_ALT, ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED);
    compositor.tell(ORG_KDE_KWIN_KEYSTATE_KEY_CAPSLOCK, ORG_KDE_KWIN_KEYSTATE_STATE_LOCKED);
    compositor.tell(40, ORG_KDE_KWIN_KEYSTATE_STATE_PRESSED);
    compositor.tell(ORG_KDE_KWIN_KEYSTATE_KEY_META, ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED);
    EXPECT_TRUE(loop.runUntil([&] { return keys.down() == (modifierOption | modifierControl); }));
    EXPECT_EQ(changes, 6);

    first.reset();
    connection->roundTrip();
    EXPECT_EQ(compositor.listeners(), 1);
    second.reset();
    EXPECT_TRUE(loop.runUntil([&] { return compositor.listeners() == 0; }));
    EXPECT_EQ(keys.down(), 0U);
}

TEST(ModifierKeys, AreNotToldByAnOlderCompositor) {
    KeyStateCompositor compositor(4);
    PollLoop loop;
    std::string problem;
    const auto connection = Connection::open(loop, loop, "keys", problem);
    ASSERT_TRUE(connection) << problem;
    ModifierKeys keys(*connection);
    EXPECT_FALSE(keys.areTold());
    const Token token = keys.watch([] {});
    connection->roundTrip();
    EXPECT_EQ(compositor.listeners(), 0);
    EXPECT_EQ(keys.down(), 0U);
}

} // namespace
} // namespace lumetry::wayland
