#include "platform/native/resumption.h"

#include "platform/linux/plasma/desktop.h"
#include "platform/linux/system/environment.h"

#include <poll.h>
#include <unistd.h>
#include <wayland-client.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

namespace lumetry {
namespace {

constexpr const char* mark = "LUMETRY_BEGINS_ANEW";
constexpr auto pause = std::chrono::milliseconds(200);
/// How long a compositor may take to answer: it is busy while it starts.
constexpr auto answerPatience = std::chrono::seconds(3);
/// A desktop that takes longer has not crashed but ended.
constexpr auto patience = std::chrono::seconds(30);

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

void beginAnew() {
    std::error_code error;
    std::string program = std::filesystem::read_symlink("/proc/self/exe", error).string();
    setenv(mark, "1", 1);
    // This process holds them back, and the next one inherits that.
    sigset_t none;
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    const std::array<char*, 2> arguments = {program.data(), nullptr};
    execv(program.c_str(), arguments.data());
}

} // namespace

void beginAnewOnceBack(TerminationSignals& endRequests) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!endRequests.received() && std::chrono::steady_clock::now() < end) {
        if (compositorAnswers() && PlasmaDesktop::isPresent()) {
            beginAnew();
            return;
        }
        std::this_thread::sleep_for(pause);
    }
}

bool hasBegunAnew() {
    const bool anew = !environmentText(mark).empty();
    unsetenv(mark);
    return anew;
}

} // namespace lumetry
