#pragma once

#include <QDBusServiceWatcher>

#include <functional>
#include <utility>

namespace lumetry {

/// Tells when the session has a tray that takes in items over the bus (StatusNotifierItem).
class NotifierTray {
public:
    NotifierTray();

    [[nodiscard]] bool isPresent() const { return present_; }
    /// Calls the handler whenever one has come or gone; one handler at a time.
    void onChange(std::function<void()> handler) { handler_ = std::move(handler); }

private:
    void setPresent(bool present);

    QDBusServiceWatcher watcher_;
    bool present_ = false;
    std::function<void()> handler_;
};

} // namespace lumetry
