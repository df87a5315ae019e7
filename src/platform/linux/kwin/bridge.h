#pragma once

#include "base/geometry.h"
#include "base/handler_list.h"
#include "base/lifetime.h"
#include "base/token.h"
#include "platform/linux/bus/bus_reader.h"
#include "platform/linux/bus/connection.h"
#include "platform/linux/loop/file_descriptor_watcher.h"
#include "platform/run_loop.h"

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumetry::kwin {

enum class Kind : std::uint8_t { desktop, dock, popup, floating, normal };

/// A window as KWin reports it. Places in KWin's coordinates: points from the top-left corner of
/// all outputs, y downwards.
struct Window {
    std::string id;           ///< KWin's, the same for as long as it lives
    std::uint32_t number = 0; ///< this program's, likewise
    std::optional<pid_t> pid;
    Kind kind = Kind::normal;
    bool active = false;
    double opacity = 1;
    Rect frame;  ///< with decorations, without shadow
    Rect client; ///< without decorations
    Rect buffer; ///< what the application draws, its own shadow included
    bool inTaskBar = true;
    bool tellsDamage = false;         ///< whether KWin says whenever it has drawn anew
    std::vector<std::string> classes; ///< resource name and class, and the desktop file's name
    std::string caption;

    friend bool operator==(const Window&, const Window&) = default;
};

/// Reads the script's report. Lines that make no sense are left out.
[[nodiscard]] std::vector<Window> readWindows(std::string_view report);

/// Has a script run in KWin while somebody uses it, and keeps what it reports.
class Bridge {
public:
    /// Connects to the session bus.
    /// @param problem why there is no KWin to work with, and what to do, when the answer is empty
    [[nodiscard]] static std::unique_ptr<Bridge> open(FileDescriptorWatcher& watcher,
                                                      RunLoop& runLoop, std::string& problem);
    Bridge(const Bridge&) = delete;
    Bridge& operator=(const Bridge&) = delete;
    ~Bridge();

    /// Keeps the script running for as long as the token lives.
    [[nodiscard]] Token use();
    /// Those on the screen, the topmost first. Runs the script for a while where nobody uses it.
    /// Absent when KWin does not answer.
    [[nodiscard]] const std::optional<std::vector<Window>>& windows();
    /// Where the pointer is, in KWin's coordinates; absent when KWin does not answer.
    [[nodiscard]] std::optional<Point> pointer();
    /// @{ What was last reported, without having the script run.
    [[nodiscard]] const std::optional<std::vector<Window>>& knownWindows() const {
        return windows_;
    }
    [[nodiscard]] const std::optional<Point>& knownPointer() const { return pointer_; }
    /// @}
    /// Calls the handler when the pointer has moved.
    [[nodiscard]] Token onPointer(std::function<void()> handler);

    /// Calls the handler with the id of a window that has drawn anew; now and then while it goes on
    /// drawing.
    [[nodiscard]] Token onDamage(std::function<void(const std::string&)> handler);
    /// Since when a window has surely looked the same. Absent when KWin may not say when it draws.
    [[nodiscard]] std::optional<std::chrono::steady_clock::time_point>
    unchangedSince(const Window& window) const;

    /// How often KWin has been waited for.
    [[nodiscard]] std::size_t roundTrips() const { return roundTrips_; }

private:
    using Clock = std::chrono::steady_clock;

    Bridge(FileDescriptorWatcher& watcher, RunLoop& runLoop, BusConnection bus);

    void read();
    void handle(DBusMessage& message);
    void take(const char* method, const char* text);
    [[nodiscard]] BusMessage askKWin(const std::string& path, const char* interface,
                                     const char* method,
                                     const std::vector<std::string>& texts = {});
    void unloadLeftovers();
    void load();
    void unload();
    void linger();
    void check();
    void checkLater();
    void tellPointer();
    void forgetOldDamages();
    void await(const std::function<bool()>& condition);
    void ensureReport(const std::function<bool()>& isThere);

    RunLoop& runLoop_;
    BusConnection bus_;
    std::optional<BusReader> reader_;
    std::optional<BusNameOwner> kwin_;
    int users_ = 0;
    bool lingers_ = false;
    bool checks_ = false;
    bool tellsPointer_ = false;
    bool loaded_ = false;
    std::optional<Clock::time_point> silentSince_; ///< since a report did not come
    std::optional<std::vector<Window>> windows_;
    std::optional<Point> pointer_;
    std::optional<Clock::time_point> reportsSince_;    ///< when the script's first report came
    std::map<std::string, Clock::time_point> damages_; ///< when a window's last one was told
    std::size_t roundTrips_ = 0;
    std::uint32_t lastNumber_ = 0;
    HandlerList<> pointerHandlers_;
    HandlerList<const std::string&> damageHandlers_;
    Lifetime lifetime_;
};

} // namespace lumetry::kwin
