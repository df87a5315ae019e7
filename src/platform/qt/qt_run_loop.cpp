#include "platform/qt/qt_run_loop.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace lumetry {
namespace {

double secondsSinceReferenceDate() {
    constexpr std::chrono::sys_days referenceDate =
        std::chrono::year(2001) / std::chrono::January / 1;
    return std::chrono::duration<double>(std::chrono::system_clock::now() - referenceDate).count();
}

std::chrono::milliseconds wholeMilliseconds(double seconds) {
    return std::chrono::milliseconds(std::llround(std::max(seconds, 0.0) * 1000));
}

class ReadWatcher final : public QSocketNotifier {
public:
    ReadWatcher(int fileDescriptor, QObject* parent)
        : QSocketNotifier(fileDescriptor, Read, parent) {}

    void silence() { setEnabled(false); }
};

/// Connects a signal to a handler for as long as the token lives. The handler may let the token go
/// while it is being called.
template<typename Sender, typename Signal>
Token connectHandler(Sender* sender, Signal signal, void (Sender::*silence)(),
                     std::function<void()> handler) {
    QObject::connect(sender, signal, sender,
                     [handler = std::make_shared<std::function<void()>>(std::move(handler))] {
                         // The handler may let go of the last other copy.
                         // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
                         const auto kept = handler;
                         (*kept)();
                     });
    return Token([guarded = QPointer<Sender>(sender), silence] {
        if (guarded) {
            (guarded->*silence)();
            guarded->disconnect();
            guarded->deleteLater();
        }
    });
}

} // namespace

QtRunLoop::QtRunLoop() : startedAt_(secondsSinceReferenceDate()) {}

double QtRunLoop::now() {
    return startedAt_ +
           std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
}

void QtRunLoop::async(std::function<void()> task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

void QtRunLoop::after(double seconds, std::function<void()> task) {
    QTimer::singleShot(wholeMilliseconds(seconds), Qt::PreciseTimer, &context_, std::move(task));
}

Token QtRunLoop::every(double seconds, std::function<void()> task) {
    auto* timer = new QTimer(&context_);
    Token token = connectHandler(timer, &QTimer::timeout, &QTimer::stop, std::move(task));
    timer->start(wholeMilliseconds(seconds));
    return token;
}

Token QtRunLoop::watchReadable(int fileDescriptor, std::function<void()> handler) {
    auto* watcher = new ReadWatcher(fileDescriptor, &context_);
    return connectHandler(watcher, &ReadWatcher::activated, &ReadWatcher::silence,
                          std::move(handler));
}

} // namespace lumetry
