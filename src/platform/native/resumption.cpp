#include "platform/native/resumption.h"

#include "base/text.h"
#include "platform/linux/plasma/desktop.h"
#include "platform/linux/system/environment.h"

#include <poll.h>
#include <unistd.h>
#include <wayland-client.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

namespace lumetry {
namespace {

using Clock = std::chrono::steady_clock;

/// When this process has begun anew lately: seconds since the machine's start, separated by commas.
constexpr const char* mark = "LUMETRY_BEGINS_ANEW";
constexpr auto pause = std::chrono::milliseconds(200);
/// How long a compositor may take to answer at first: it is busy while it starts. Twice as long
/// after each try without an answer, as one that is given up is more work to it.
constexpr auto firstAnswerPatience = std::chrono::seconds(2);
/// A desktop that takes longer has not crashed but ended.
constexpr auto patience = std::chrono::seconds(30);
/// A connection that breaks more often than that within a minute will do so again.
constexpr std::size_t mostBeginnings = 3;
constexpr long beginningCountsSeconds = 60;

std::string& marked() {
    static std::string text;
    return text;
}

long secondsOfMachine() {
    timespec time{};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return time.tv_sec;
}

struct Disconnect {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
};

/// Whether a compositor answers, and not only whoever keeps its socket open.
bool compositorAnswers(std::chrono::milliseconds longest, TerminationSignals& endRequests) {
    const std::unique_ptr<wl_display, Disconnect> display(wl_display_connect(nullptr));
    if (!display || wl_display_get_registry(display.get()) == nullptr ||
        wl_display_flush(display.get()) < 0) {
        return false;
    }
    pollfd answer = {wl_display_get_fd(display.get()), POLLIN, 0};
    int answered = 0;
    const auto end = Clock::now() + longest;
    while (answered == 0 && !endRequests.received() && Clock::now() < end) {
        answered = poll(&answer, 1, static_cast<int>(pause.count()));
    }
    return answered == 1 && wl_display_dispatch(display.get()) >= 0;
}

void beginAnew(const std::string& newMark) {
    std::error_code error;
    std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    setenv(mark, newMark.c_str(), 1);
    // The signals that end a process are blocked in this one, and the next one would inherit that.
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    const std::array<char*, 2> arguments = {program.data(), nullptr};
    execv(program.c_str(), arguments.data());
}

} // namespace

std::optional<std::string> addedBeginning(const std::string& beginnings, long now) {
    std::string recent;
    std::size_t count = 0;
    for (const std::string& beginning : nonEmptyParts(beginnings, ',')) {
        const long age = now - std::strtol(beginning.c_str(), nullptr, 10);
        if (age >= 0 && age < beginningCountsSeconds) {
            recent += beginning + ",";
            ++count;
        }
    }
    return count < mostBeginnings ? std::optional(recent + std::to_string(now)) : std::nullopt;
}

void beginAnewOnceBack(TerminationSignals& endRequests) {
    // Both connections tell of the same end, each in its own thread.
    static std::mutex oneAtATime;
    const std::lock_guard lock(oneAtATime);
    static bool hasGivenUp = false;
    const auto newMark = hasGivenUp ? std::nullopt : addedBeginning(marked(), secondsOfMachine());
    if (!newMark && !hasGivenUp) {
        std::cerr << "lumetry: the connection to the Wayland compositor broke "
                  << mostBeginnings + 1
                  << " times within a minute; see what the compositor's log says of it\n";
    }
    const auto end = Clock::now() + patience;
    std::chrono::milliseconds longest = firstAnswerPatience;
    while (newMark && !endRequests.received() && Clock::now() < end) {
        const auto asked = Clock::now();
        if (compositorAnswers(longest, endRequests) && PlasmaDesktop::isPresent()) {
            beginAnew(*newMark);
            break;
        }
        if (Clock::now() - asked >= longest) {
            longest *= 2;
        }
        std::this_thread::sleep_for(pause);
    }
    hasGivenUp = true;
}

bool hasBegunAnew() {
    marked() = environmentText(mark);
    unsetenv(mark);
    return !marked().empty();
}

} // namespace lumetry
