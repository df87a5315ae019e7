#pragma once

#include "base/handler_list.h"
#include "platform/local_event_monitors.h"
#include "platform/qt/widgets/keyboard_reader.h"

#include <QObject>

#include <cstdint>

namespace lumetry {

/// Keys on their way to the program's own windows. Needs a QGuiApplication.
class QtLocalEventMonitors final : public QObject, public LocalEventMonitors {
public:
    explicit QtLocalEventMonitors(KeyboardReader keyboard);

    [[nodiscard]] Token addLocalMonitorForEvents(EventMask mask, Handler handler) override;

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// Tells of the modifiers if they are not the ones that were told last.
    EventFate deliverFlags(std::uint16_t keyCode, const QKeyEvent* key);
    [[nodiscard]] EventFate deliverKey(const QKeyEvent& key);
    [[nodiscard]] EventFate deliver(const Event& event);

    KeyboardReader keyboard_;
    AnsweringHandlerList<EventFate, const Event&> monitors_;
    ModifierFlags flags_ = 0; ///< as told last
};

} // namespace lumetry
