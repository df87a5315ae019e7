#pragma once

#include "onboarding/views/motion.h"

#include <QTimeLine>

#include <functional>

class QWidget;

namespace lumetry::views {

/// A value that swings between two others for ever. It rests while its widget cannot be seen.
class Pulse final : public QTimeLine {
public:
    struct Swing {
        double from = 0;
        double to = 1;
        double seconds = 1; ///< for one way
        int stepsPerSecond = 20;
        QEasingCurve curve = linear(); ///< of either way
    };

    /// @param apply is called with every new value
    Pulse(QWidget* widget, const Swing& swing, std::function<void(double)> apply);

    void begin();
    [[nodiscard]] bool isRunning() const { return state() != NotRunning; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;

    Swing swing_;
    std::function<void(double)> apply_;
    QWidget* widget_;
};

} // namespace lumetry::views
