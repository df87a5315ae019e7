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

/// Keys on their way to the program's own windows. Needs a QGuiApplication.
class QtLocalEventMonitors final : public QObject, public LocalEventMonitors {
public:
    /// @param keyCodeOf the platform's code of a key that the window system has a code of its own
    /// for
    explicit QtLocalEventMonitors(std::function<std::uint16_t(std::uint32_t)> keyCodeOf);

    [[nodiscard]] Token addLocalMonitorForEvents(EventMask mask, Handler handler) override;

private:
    struct Monitor {
        int number;
        EventMask mask;
        std::shared_ptr<Handler> handler;
    };

    bool eventFilter(QObject* watched, QEvent* event) override;
    [[nodiscard]] EventFate deliver(const QKeyEvent& key);

    std::function<std::uint16_t(std::uint32_t)> keyCodeOf_;
    int lastNumber_ = 0;
    std::vector<Monitor> monitors_;
    ModifierFlags flags_ = 0; ///< as of the last event
    /// Empty once this object is gone: tokens may outlive it.
    std::shared_ptr<QtLocalEventMonitors*> self_ = std::make_shared<QtLocalEventMonitors*>(this);
};

} // namespace lumetry
