#include "platform/qt/widgets/own_windows.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>

#include <algorithm>

namespace lumetry {
namespace {

bool standsAlone(const QWindow& window) {
    return window.type() == Qt::Window || window.type() == Qt::Dialog || window.type() == Qt::Tool;
}

} // namespace

bool hasVisibleWindows() {
    const auto windows = QGuiApplication::topLevelWindows();
    return std::ranges::any_of(
        windows, [](const QWindow* window) { return window->isVisible() && standsAlone(*window); });
}

QWindow* frontWindow() {
    QWindow* front = nullptr;
    for (QWindow* const window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible() && standsAlone(*window) && window->handle() != nullptr) {
            front = window;
        }
    }
    return QGuiApplication::focusWindow() != nullptr ? QGuiApplication::focusWindow() : front;
}

LastWindowWatch::LastWindowWatch(std::function<void()> handler) : handler_(std::move(handler)) {
    qGuiApp->installEventFilter(this);
}

bool LastWindowWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close && watched->isWindowType()) {
        const auto tell = [this] {
            if (!hasVisibleWindows()) {
                handler_();
            }
        };
        QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
    }
    return false;
}

} // namespace lumetry
