#pragma once

#include "base/bitmap.h"
#include "base/geometry.h"
#include "base/token.h"
#include "platform/linux/bus/connection.h"
#include "platform/linux/kwin/bridge.h"
#include "platform/linux/loop/file_descriptor_watcher.h"

#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace lumetry::kwin {

/// A file descriptor that nobody else closes.
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    [[nodiscard]] int get() const { return descriptor_; }
    void reset(int other = -1) {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
        descriptor_ = other;
    }

private:
    int descriptor_;
};

/// A window's pixels, its decoration included, without its shadow; none when the window is gone.
struct Screenshot {
    Bitmap bitmap;
    Size windowSize;                             ///< in points, when it was asked for
    std::chrono::steady_clock::time_point asked; ///< the window may have changed since
};

/// Has KWin draw windows into pictures. They come in on a connection of their own while the program
/// does something else; KWin takes a frame of the screen for each.
class WindowScreenshots {
public:
    using Clock = std::chrono::steady_clock;

    explicit WindowScreenshots(FileDescriptorWatcher& watcher);
    WindowScreenshots(const WindowScreenshots&) = delete;
    WindowScreenshots& operator=(const WindowScreenshots&) = delete;
    ~WindowScreenshots();

    /// Asks for a window's picture, unless one of that size has been asked for since that time.
    void begin(const Window& window, Clock::time_point notBefore);
    /// The picture that was asked for, for which it waits until the deadline. Absent when none was
    /// asked for, and when KWin does not answer, or refuses.
    [[nodiscard]] std::optional<Screenshot> finish(const std::string& window,
                                                   Clock::time_point deadline);
    /// The picture that was asked for, if it is there.
    [[nodiscard]] std::optional<Screenshot> arrived(const std::string& window);
    /// Forgets the pictures that were asked for before that time.
    void dropBefore(Clock::time_point time);
    /// Whether all pictures that were asked for have been taken.
    [[nodiscard]] bool isEmpty() const { return requests_.empty(); }

    /// Whether KWin answers this program, for which it waits.
    [[nodiscard]] bool isAllowed();

private:
    struct Request;

    bool connect();
    void read(int milliseconds);
    void takeAnswer(DBusMessage& message);

    FileDescriptorWatcher& watcher_;
    BusConnection bus_;
    Token readable_;
    std::map<std::string, std::unique_ptr<Request>> requests_; ///< by the windows' ids
    std::optional<Clock::time_point> silentSince_;
};

} // namespace lumetry::kwin
