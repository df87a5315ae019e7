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
#include <optional>
#include <string>
#include <system_error>
#include <thread>

namespace lumetry {
namespace {

/// When this process has begun anew lately: seconds since the machine's start, separated by commas.
constexpr const char* mark = "LUMETRY_BEGINS_ANEW";
constexpr auto pause = std::chrono::milliseconds(200);
/// How long a compositor may take to answer: it is busy while it starts.
constexpr auto answerPatience = std::chrono::seconds(3);
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
bool compositorAnswers() {
    const std::unique_ptr<wl_display, Disconnect> display(wl_display_connect(nullptr));
    if (!display || wl_display_get_registry(display.get()) == nullptr ||
        wl_display_flush(display.get()) < 0) {
        return false;
    }
    pollfd answer = {wl_display_get_fd(display.get()), POLLIN, 0};
    const auto longest = std::chrono::milliseconds(answerPatience);
    return poll(&answer, 1, static_cast<int>(longest.count())) == 1 &&
           wl_display_dispatch(display.get()) >= 0;
}

void beginAnew(const std::string& newMark) {
    std::error_code error;
    std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    setenv(mark, newMark.c_str(), 1);
    // This process holds them back, and the next one inherits that.
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
    // Both connections tell of the same end.
    static bool hasGivenUp = false;
    const auto newMark = hasGivenUp ? std::nullopt : addedBeginning(marked(), secondsOfMachine());
    if (!newMark && !hasGivenUp) {
        std::cerr << "lumetry: the connection to the Wayland compositor broke "
                  << mostBeginnings + 1
                  << " times within a minute; see what the compositor's log says of it\n";
    }
    const auto end = std::chrono::steady_clock::now() + patience;
    while (newMark && !endRequests.received() && std::chrono::steady_clock::now() < end) {
        if (compositorAnswers() && PlasmaDesktop::isPresent()) {
            beginAnew(*newMark);
            break;
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
