#include "onboarding/views/centering.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace lumetry::views {
namespace {

void place(QWidget& window) {
    if (const QScreen* const screen = QGuiApplication::primaryScreen()) {
        window.move(QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, window.frameSize(),
                                        screen->availableGeometry())
                        .topLeft());
    }
}

/// Centres its window once more when the frame turns up around it.
class FrameWatcher final : public QObject {
public:
    explicit FrameWatcher(QWidget& window) : QObject(&window), window_(window) {
        window.installEventFilter(this);
    }

private:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        const bool shown = event->type() == QEvent::Move || event->type() == QEvent::WindowActivate;
        // Window managers make the frame first and fit it to the window then: until they have, Qt
        // takes it for smaller than what it is around.
        const QSize frame = window_.frameSize();
        const bool framed = shown && window_.isVisible() && frame != window_.size() &&
                            frame == frame.expandedTo(window_.size());
        if (framed || event->type() == QEvent::Hide) {
            window_.removeEventFilter(this);
            deleteLater();
        }
        if (framed) {
            place(window_);
        }
        return false;
    }

    QWidget& window_;
};

} // namespace

void centerOnScreen(QWidget& window) {
    place(window);
    if (!window.isVisible()) {
        new FrameWatcher(window);
    }
}

} // namespace lumetry::views
