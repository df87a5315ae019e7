#pragma once

#include "platform/input.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/global_shortcuts.h"
#include "platform/linux/kwin/windows.h"

#include <functional>
#include <memory>
#include <vector>

namespace lumetry::kwin {

/// The pointer as the script reports it. KWin 5 tells no client which modifiers are down: in place
/// of holding Alt stands a shortcut that pins an element, and lets go of it.
class KWinInput final : public Pointer, public EventMonitors {
public:
    KWinInput(Bridge& bridge, GlobalShortcuts& shortcuts,
              std::function<std::vector<Output>()> outputs);

    [[nodiscard]] Point location() override;
    [[nodiscard]] ModifierFlags modifierFlags() override { return pinned_ ? modifierOption : 0; }
    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override;

private:
    struct Monitor {
        EventMask mask = 0;
        std::function<void(const Event&)> handler;
        std::vector<Token> sources;
    };

    void dispatch(const Event& event);
    void togglePin();

    Bridge& bridge_;
    GlobalShortcuts& shortcuts_;
    std::function<std::vector<Output>()> outputs_;
    std::vector<std::shared_ptr<Monitor>> monitors_;
    Token pointerEvents_;
    bool pinned_ = false;
    Lifetime lifetime_;
};

} // namespace lumetry::kwin
