#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/hot_keys.h"
#include "platform/input.h"
#include "platform/linux/bus/bus_reader.h"
#include "platform/linux/bus/connection.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumetry::kwin {

/// Shortcuts that KWin keeps for programs (KGlobalAccel).
class GlobalShortcuts final : public HotKeys {
public:
    GlobalShortcuts(FileDescriptorWatcher& watcher, RunLoop& runLoop);

    /// Takes a key for as long as the token lives.
    /// @param action its name among this program's
    /// @param title what KWin's settings call it
    /// @param key as Qt counts keys, with its modifiers
    [[nodiscard]] Token take(const std::string& action, const std::string& title, int key,
                             std::function<void()> handler);
    /// Calls the handler when the hot key turns out to be another program's, once.
    void onTaken(std::function<void()> handler) { onTaken_ = std::move(handler); }

    [[nodiscard]] Token installEventHandler(Handler handler) override;
    [[nodiscard]] Token registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                            HotKeyID id) override;

private:
    struct Shortcut {
        std::string action;
        std::string title;
        int key = 0;
        std::function<void()> handler;
    };

    void enrol(const std::shared_ptr<Shortcut>& shortcut);
    void read();
    void handle(DBusMessage& message);
    void release(const std::string& action);

    RunLoop& runLoop_;
    BusConnection bus_;
    std::optional<BusReader> reader_;
    std::optional<BusNameOwner> keeper_;
    std::vector<std::shared_ptr<Shortcut>> shortcuts_;
    AnsweringHandlerList<EventStatus, const HotKeyEvent*> handlers_;
    std::function<void()> onTaken_;
    Lifetime lifetime_;
};

} // namespace lumetry::kwin
