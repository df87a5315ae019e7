#pragma once

#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

namespace lumetry {

/// A loop that never runs, for using the desktop without waiting for anything of it.
class IdleLoop final : public RunLoop, public FileDescriptorWatcher {
public:
    [[nodiscard]] double now() override { return 0; }
    void async(std::function<void()> /*task*/) override {}
    void after(double /*seconds*/, std::function<void()> /*task*/) override {}
    [[nodiscard]] Token every(double /*seconds*/, std::function<void()> /*task*/) override {
        return {};
    }
    [[nodiscard]] Token watchReadable(int /*fileDescriptor*/,
                                      std::function<void()> /*handler*/) override {
        return {};
    }
};

} // namespace lumetry
