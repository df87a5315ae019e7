#include "platform/linux/wayland/keys/modifier_keys.h"

#include <keystate-client-protocol.h>

#include <array>
#include <memory>
#include <utility>

namespace lumetry::wayland {
namespace {

/// The first that tells of other keys than those that lock.
constexpr std::uint32_t version = 5;

constexpr std::uint32_t bitOf(std::uint32_t key) {
    return std::uint32_t{1} << key;
}

} // namespace

struct ModifierKeys::Events {
    static void changed(void* data, org_kde_kwin_keystate* /*states*/, std::uint32_t key,
                        std::uint32_t state) {
        constexpr std::uint32_t lastKey = ORG_KDE_KWIN_KEYSTATE_KEY_ALTGR;
        auto& keys = *static_cast<ModifierKeys*>(data);
        if (key > lastKey) {
            return;
        }
        const std::uint32_t others = keys.pressed_ & ~bitOf(key);
        const bool isDown = state != ORG_KDE_KWIN_KEYSTATE_STATE_UNLOCKED;
        const ModifierFlags before = keys.down();
        keys.pressed_ = others | (isDown ? bitOf(key) : 0);
        if (keys.down() != before) {
            keys.handlers_.call();
        }
    }
};

ModifierKeys::~ModifierKeys() = default;

bool ModifierKeys::areTold() const {
    return connection_.offers(org_kde_kwin_keystate_interface, version);
}

ModifierFlags ModifierKeys::down() const {
    constexpr std::array<std::pair<std::uint32_t, ModifierFlags>, 5> flags = {
        {{ORG_KDE_KWIN_KEYSTATE_KEY_ALT, modifierOption},
         {ORG_KDE_KWIN_KEYSTATE_KEY_ALTGR, modifierOption},
         {ORG_KDE_KWIN_KEYSTATE_KEY_CONTROL, modifierControl},
         {ORG_KDE_KWIN_KEYSTATE_KEY_SHIFT, modifierShift},
         {ORG_KDE_KWIN_KEYSTATE_KEY_META, modifierCommand}}};
    ModifierFlags down = 0;
    for (const auto& [key, flag] : flags) {
        down |= (pressed_ & bitOf(key)) != 0 ? flag : 0;
    }
    return down;
}

Token ModifierKeys::watch(std::function<void()> handler) {
    if (!states_ && areTold()) {
        static constexpr org_kde_kwin_keystate_listener listener = {Events::changed};
        states_ =
            connection_.bindFirst<org_kde_kwin_keystate>(org_kde_kwin_keystate_interface, version);
        org_kde_kwin_keystate_add_listener(states_.get(), &listener, this);
        org_kde_kwin_keystate_fetchStates(states_.get());
        connection_.flush();
    }
    auto added = std::make_shared<Token>(handlers_.add(std::move(handler)));
    return Token(lifetime_.guard([this, added] {
        added->reset();
        if (handlers_.isEmpty()) {
            states_.reset();
            connection_.flush();
            pressed_ = 0;
        }
    }));
}

} // namespace lumetry::wayland
