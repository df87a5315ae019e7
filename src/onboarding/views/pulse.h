#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

namespace lumetry::views {

/// A value that swings between two others for ever. It rests while its widget cannot be seen.
class Pulse final : public QObject {
public:
    struct Course {
        double from = 0;
        double to = 1;
        double seconds = 1; ///< for one way
        int stepsPerSecond = 20;
        bool eases = false; ///< at both ends
    };

    /// @param apply is called with every new value
    Pulse(QWidget* widget, const Course& course, std::function<void(double)> apply);

    void start();
    void stop();
    [[nodiscard]] bool isRunning() const { return wanted_; }

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void step();
    void follow(bool visible);

    Course course_;
    std::function<void(double)> apply_;
    QWidget* widget_;
    QTimer timer_;
    QElapsedTimer clock_;
    bool wanted_ = false;
};

} // namespace lumetry::views
