#include "platform/linux/kwin/window_screenshots.h"

#include "platform/linux/kwin/patience.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <utility>

namespace lumetry::kwin {
namespace {

constexpr const char* service = "org.kde.KWin";
constexpr const char* path = "/org/kde/KWin/ScreenShot2";
constexpr const char* interface = "org.kde.KWin.ScreenShot2";
constexpr std::size_t bytesPerPixel = 4;

void addOption(DBusMessageIter& options, const char* name, bool value) {
    DBusMessageIter entry;
    DBusMessageIter variant;
    const dbus_bool_t truth = value ? TRUE : FALSE;
    dbus_message_iter_open_container(&options, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
    dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, DBUS_TYPE_BOOLEAN_AS_STRING,
                                     &variant);
    dbus_message_iter_append_basic(&variant, DBUS_TYPE_BOOLEAN, &truth);
    dbus_message_iter_close_container(&entry, &variant);
    dbus_message_iter_close_container(&options, &entry);
}

BusMessage captureCall(const std::string& window, int pipe) {
    BusMessage call(dbus_message_new_method_call(service, path, interface, "CaptureWindow"));
    dbus_message_set_auto_start(call.get(), FALSE);
    DBusMessageIter arguments;
    dbus_message_iter_init_append(call.get(), &arguments);
    const char* id = window.c_str();
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &id);
    DBusMessageIter options;
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "{sv}", &options);
    addOption(options, "include-decoration", true);
    addOption(options, "include-shadow", false);
    addOption(options, "include-cursor", false);
    addOption(options, "native-resolution", true);
    dbus_message_iter_close_container(&arguments, &options);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UNIX_FD, &pipe);
    return call;
}

/// What KWin says of the pixels that it writes.
struct Form {
    dbus_uint32_t width = 0;
    dbus_uint32_t height = 0;
    dbus_uint32_t stride = 0;
    dbus_uint32_t format = 0; ///< QImage's number
};

std::optional<Form> formIn(DBusMessage& message) {
    Form form;
    DBusMessageIter arguments;
    if (dbus_message_iter_init(&message, &arguments) == FALSE ||
        dbus_message_iter_get_arg_type(&arguments) != DBUS_TYPE_ARRAY) {
        return std::nullopt;
    }
    DBusMessageIter entry;
    dbus_message_iter_recurse(&arguments, &entry);
    for (; dbus_message_iter_get_arg_type(&entry) == DBUS_TYPE_DICT_ENTRY;
         dbus_message_iter_next(&entry)) {
        DBusMessageIter field;
        DBusMessageIter value;
        const char* name = nullptr;
        dbus_message_iter_recurse(&entry, &field);
        dbus_message_iter_get_basic(&field, &name);
        dbus_message_iter_next(&field);
        dbus_message_iter_recurse(&field, &value);
        const std::array<std::pair<std::string_view, dbus_uint32_t*>, 4> numbers = {
            {{"width", &form.width},
             {"height", &form.height},
             {"stride", &form.stride},
             {"format", &form.format}}};
        for (const auto& [wanted, number] : numbers) {
            if (wanted == name && dbus_message_iter_get_arg_type(&value) == DBUS_TYPE_UINT32) {
                dbus_message_iter_get_basic(&value, number);
            }
        }
    }
    constexpr dbus_uint32_t largestSide = 32768;
    const bool isUsable = form.width > 0 && form.height > 0 && form.width <= largestSide &&
                          form.height <= largestSide && form.stride == form.width * bytesPerPixel;
    return isUsable ? std::optional(form) : std::nullopt;
}

/// @param error its name; null when there is none
bool saysNoSuchWindow(const char* error) {
    return error != nullptr &&
           std::string_view(error).find("InvalidWindow") != std::string_view::npos;
}

bool swapsRedAndBlue(dbus_uint32_t format) {
    constexpr dbus_uint32_t firstRgba = 16; // QImage::Format_RGBX8888 to RGBA8888_Premultiplied
    constexpr dbus_uint32_t lastRgba = 18;
    return format >= firstRgba && format <= lastRgba;
}

void swapRedAndBlue(Bitmap& bitmap) {
    for (std::uint32_t& pixel : bitmap.pixels) {
        pixel = (pixel & 0xFF00FF00U) | ((pixel & 0xFFU) << 16U) | ((pixel >> 16U) & 0xFFU);
    }
}

struct Pipe {
    Descriptor reading;
    Descriptor writing;

    bool open() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
            return false;
        }
        reading.reset(ends[0]);
        writing.reset(ends[1]);
        // A picture has millions of bytes: the more of them fit in at once, the less often KWin
        // and this program wait for each other. It is as good as it gets where that is refused.
        constexpr int room = 1 << 20;
        static_cast<void>(fcntl(reading.get(), F_SETPIPE_SZ, room));
        // KWin writes as if nothing could be in its way.
        return fcntl(writing.get(), F_SETFL, 0) == 0;
    }
};

int millisecondsUntil(WindowScreenshots::Clock::time_point deadline) {
    const auto left = deadline - WindowScreenshots::Clock::now();
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(
        std::chrono::ceil<std::chrono::milliseconds>(left).count(), 0));
}

} // namespace

struct WindowScreenshots::Request {
    enum class State : std::uint8_t { asked, answered, complete, failed };

    dbus_uint32_t serial = 0;
    State state = State::asked;
    Pipe pipe;
    Token readable;
    Screenshot shot;
    std::size_t filled = 0; ///< of the bitmap, in bytes
    bool swaps = false;

    [[nodiscard]] bool isOver() const { return state == State::complete || state == State::failed; }

    void end(State with) {
        state = with;
        readable.reset();
        pipe.reading.reset();
    }

    /// Takes in what the pipe holds.
    void advance() {
        const std::size_t size = shot.bitmap.pixels.size() * bytesPerPixel;
        while (state == State::answered) {
            auto* const bytes = reinterpret_cast<std::uint8_t*>(shot.bitmap.pixels.data());
            const auto count = ::read(pipe.reading.get(), bytes + filled, size - filled);
            if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
                return;
            }
            if (count <= 0) {
                end(State::failed);
                return;
            }
            filled += static_cast<std::size_t>(count);
            if (filled == size) {
                if (swaps) {
                    swapRedAndBlue(shot.bitmap);
                }
                end(State::complete);
            }
        }
    }
};

WindowScreenshots::WindowScreenshots(FileDescriptorWatcher& watcher) : watcher_(watcher) {}

WindowScreenshots::~WindowScreenshots() = default;

bool WindowScreenshots::connect() {
    if (!bus_) {
        bus_ = openBus(sessionBusAddress());
        int descriptor = -1;
        if (bus_ && dbus_connection_get_unix_fd(bus_.get(), &descriptor) != FALSE) {
            readable_ = watcher_.watchReadable(descriptor, [this] { read(0); });
        }
    }
    return bus_ != nullptr;
}

void WindowScreenshots::begin(const Window& window, Clock::time_point notBefore) {
    // Whoever has not answered in time is let alone for a while.
    constexpr auto pause = std::chrono::seconds(1);
    const auto now = Clock::now();
    const auto known = requests_.find(window.id);
    const bool isKnown = known != requests_.end() &&
                         known->second->state != Request::State::failed &&
                         known->second->shot.asked >= notBefore &&
                         known->second->shot.windowSize == window.frame.size();
    if (isKnown || (silentSince_ && now - *silentSince_ < pause) || !connect()) {
        return;
    }
    Request& request = *(requests_[window.id] = std::make_unique<Request>());
    request.shot.asked = now;
    request.shot.windowSize = window.frame.size();
    const bool sent =
        request.pipe.open() &&
        dbus_connection_send(bus_.get(), captureCall(window.id, request.pipe.writing.get()).get(),
                             &request.serial) != FALSE;
    dbus_connection_flush(bus_.get());
    request.pipe.writing.reset();
    if (!sent) {
        requests_.erase(window.id);
    }
}

std::optional<Screenshot> WindowScreenshots::finish(const std::string& window,
                                                    Clock::time_point deadline) {
    const auto found = requests_.find(window);
    if (found == requests_.end()) {
        return std::nullopt;
    }
    Request& request = *found->second;
    read(0);
    request.advance();
    while (!request.isOver() && Clock::now() < deadline) {
        if (request.state == Request::State::asked) {
            read(millisecondsUntil(deadline));
        } else {
            pollfd waiting = {request.pipe.reading.get(), POLLIN, 0};
            poll(&waiting, 1, millisecondsUntil(deadline));
        }
        request.advance();
    }
    if (request.isOver()) {
        silentSince_.reset();
    } else {
        silentSince_ = Clock::now();
    }
    auto shot = request.state == Request::State::complete ? std::optional(std::move(request.shot))
                                                          : std::nullopt;
    requests_.erase(found);
    return shot;
}

std::optional<Screenshot> WindowScreenshots::arrived(const std::string& window) {
    const auto found = requests_.find(window);
    if (found == requests_.end() || found->second->state != Request::State::complete) {
        return std::nullopt;
    }
    auto shot = std::move(found->second->shot);
    requests_.erase(found);
    return shot;
}

void WindowScreenshots::dropBefore(Clock::time_point time) {
    std::erase_if(requests_, [time](const auto& entry) { return entry.second->shot.asked < time; });
}

/// Takes in what KWin answers, for which it waits so long at most.
void WindowScreenshots::read(int milliseconds) {
    if (!bus_) {
        return;
    }
    const bool connected = dbus_connection_read_write(bus_.get(), milliseconds) != FALSE;
    while (const BusMessage message{dbus_connection_pop_message(bus_.get())}) {
        takeAnswer(*message);
    }
    if (!connected) {
        readable_.reset();
        bus_.reset();
        for (auto& [window, request] : requests_) {
            if (request->state == Request::State::asked) {
                request->end(Request::State::failed);
            }
        }
    }
}

void WindowScreenshots::takeAnswer(DBusMessage& message) {
    const auto serial = dbus_message_get_reply_serial(&message);
    const auto found = std::ranges::find_if(requests_, [serial](const auto& entry) {
        return entry.second->serial == serial && entry.second->state == Request::State::asked;
    });
    if (serial == 0 || found == requests_.end()) {
        return;
    }
    Request& request = *found->second;
    const auto form = dbus_message_get_type(&message) == DBUS_MESSAGE_TYPE_METHOD_RETURN
                          ? formIn(message)
                          : std::nullopt;
    if (!form) {
        request.end(saysNoSuchWindow(dbus_message_get_error_name(&message))
                        ? Request::State::complete
                        : Request::State::failed);
        return;
    }
    request.state = Request::State::answered;
    request.shot.bitmap = Bitmap(static_cast<int>(form->width), static_cast<int>(form->height));
    request.swaps = swapsRedAndBlue(form->format);
    request.readable =
        watcher_.watchReadable(request.pipe.reading.get(), [&request] { request.advance(); });
}

bool WindowScreenshots::isAllowed() {
    Pipe pipe;
    if (!connect() || !pipe.open()) {
        return false;
    }
    // To whom KWin answers, it says that there is no such window.
    const BusMessage call =
        captureCall("{00000000-0000-0000-0000-000000000000}", pipe.writing.get());
    DBusError error = DBUS_ERROR_INIT;
    const BusMessage answer(dbus_connection_send_with_reply_and_block(
        bus_.get(), call.get(), patienceMilliseconds, &error));
    const bool allowed = answer != nullptr || saysNoSuchWindow(error.name);
    dbus_error_free(&error);
    read(0);
    return allowed;
}

} // namespace lumetry::kwin
