#pragma once

#include "platform/local_event_monitors.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QKeyEvent;

namespace lumetry {

/// What the window system knows of the keyboard.
struct KeyboardReader {
    std::function<std::uint16_t(std::uint32_t key)> keyCode; ///< of a key that it has a code for
    std::function<bool(std::uint32_t key)> isModifier;
    std::function<ModifierFlags()> modifierFlags; ///< at this moment
};

/// Keys on their way to the program's own windows. Needs a QGuiApplication.
class QtLocalEventMonitors final : public QObject, public LocalEventMonitors {
public:
    explicit QtLocalEventMonitors(KeyboardReader keyboard);

    [[nodiscard]] Token addLocalMonitorForEvents(EventMask mask, Handler handler) override;

private:
    struct Monitor {
        int number;
        EventMask mask;
        std::shared_ptr<Handler> handler;
    };

    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Tells of the modifiers if they are not the ones that were told last.
    EventFate deliverFlags(std::uint16_t keyCode);
    [[nodiscard]] EventFate deliverKey(const QKeyEvent& key);
    [[nodiscard]] EventFate deliver(const Event& event) const;

    KeyboardReader keyboard_;
    int lastNumber_ = 0;
    std::vector<Monitor> monitors_;
    ModifierFlags flags_ = 0; ///< as told last
    /// Empty once this object is gone: tokens may outlive it.
    std::shared_ptr<QtLocalEventMonitors*> self_ = std::make_shared<QtLocalEventMonitors*>(this);
};

} // namespace lumetry
