#pragma once

#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

#include <QObject>

#include <chrono>

namespace lumetry {

/// The main thread's loop and clock on Qt's event dispatcher. Needs a QCoreApplication to run on.
class QtRunLoop final : public RunLoop, public FileDescriptorWatcher {
public:
    QtRunLoop();

    [[nodiscard]] double now() override;
    void async(std::function<void()> task) override;
    void after(double seconds, std::function<void()> task) override;
    [[nodiscard]] Token every(double seconds, std::function<void()> task) override;
    [[nodiscard]] Token watchReadable(int fileDescriptor, std::function<void()> handler) override;

private:
    /// Owns the queued tasks: with it they are gone.
    QObject context_;
    double startedAt_; ///< seconds since the reference date
    std::chrono::steady_clock::time_point started_ = std::chrono::steady_clock::now();
};

} // namespace lumetry
