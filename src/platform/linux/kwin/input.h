#pragma once

#include "base/handler_list.h"
#include "base/lifetime.h"
#include "platform/input.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/kwin/global_shortcuts.h"
#include "platform/linux/kwin/windows.h"
#include "platform/run_loop.h"

#include <functional>
#include <string>
#include <vector>

namespace lumetry::kwin {

/// How the compositor tells which modifier keys are down.
struct ModifierSource {
    std::function<bool()> isThere;
    std::function<ModifierFlags()> down;
    /// Calls a handler whenever that changes.
    std::function<Token(std::function<void()>)> watch;
};

/// The pointer as the script reports it, and keys. Where KWin tells no client which modifiers are
/// down (version 5), a shortcut stands in place of holding Alt: it pins an element, and lets go of
/// it. No version tells it of scrolling: what scrolls draws, so that drawing below the pointer is
/// told in its place.
class KWinInput final : public Pointer, public EventMonitors {
public:
    KWinInput(Bridge& bridge, GlobalShortcuts& shortcuts, ModifierSource modifiers,
              std::function<std::vector<Output>()> outputs, RunLoop& runLoop);

    [[nodiscard]] Point location() override;
    [[nodiscard]] ModifierFlags modifierFlags() override;
    [[nodiscard]] Token
    addGlobalMonitorForEvents(EventMask mask, std::function<void(const Event&)> handler) override;

private:
    [[nodiscard]] Token watchModifiers();
    void pointerMoved();
    void windowHasDrawn(const std::string& windowId);
    void lookLater();
    [[nodiscard]] const Window* windowUnderPointer();

    Bridge& bridge_;
    GlobalShortcuts& shortcuts_;
    ModifierSource modifiers_;
    std::function<std::vector<Output>()> outputs_;
    RunLoop& runLoop_;
    HandlerList<const Event&> monitors_;
    Token pointerEvents_;
    Token damages_;
    std::string drawing_;   ///< id of the window that has drawn last below the pointer
    double drawsSince_ = 0; ///< when it began to draw, on and on
    double lastDrawn_ = 0;
    bool looksAgain_ = false; ///< a task is waiting to
    bool pinned_ = false;
    Lifetime lifetime_;
};

} // namespace lumetry::kwin
