#include "platform/linux/kwin/screen_capture.h"

#include "platform/linux/kwin/call.h"
#include "platform/picture_capture.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

namespace lumetry::kwin {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* service = "org.kde.KWin";
constexpr const char* path = "/org/kde/KWin/ScreenShot2";
constexpr const char* interface = "org.kde.KWin.ScreenShot2";
/// For how long a window is taken to look the same.
constexpr auto freshness = std::chrono::milliseconds(100);

/// One end of a pipe.
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
    double scale = 1;
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
        const int type = dbus_message_iter_get_arg_type(&value);
        const std::array<std::pair<std::string_view, dbus_uint32_t*>, 4> numbers = {
            {{"width", &form.width},
             {"height", &form.height},
             {"stride", &form.stride},
             {"format", &form.format}}};
        for (const auto& [wanted, number] : numbers) {
            if (wanted == name && type == DBUS_TYPE_UINT32) {
                dbus_message_iter_get_basic(&value, number);
            }
        }
        if (std::string_view(name) == "scale" && type == DBUS_TYPE_DOUBLE) {
            dbus_message_iter_get_basic(&value, &form.scale);
        }
    }
    constexpr dbus_uint32_t largestSide = 32768;
    constexpr std::size_t bytesPerPixel = 4;
    const bool isUsable = form.width > 0 && form.height > 0 && form.width <= largestSide &&
                          form.height <= largestSide && form.stride >= form.width * bytesPerPixel &&
                          form.scale > 0;
    return isUsable ? std::optional(form) : std::nullopt;
}

/// Everything that is written into a pipe; what is missing at the end of the time stays zero.
std::vector<std::uint8_t> readAll(int pipe, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    std::size_t filled = 0;
    while (filled < size) {
        pollfd waiting = {pipe, POLLIN, 0};
        if (poll(&waiting, 1, patienceMilliseconds) <= 0) {
            return {};
        }
        const auto count = ::read(pipe, &bytes[filled], size - filled);
        if (count <= 0) {
            return {};
        }
        filled += static_cast<std::size_t>(count);
    }
    return bytes;
}

bool swapsRedAndBlue(dbus_uint32_t format) {
    constexpr dbus_uint32_t firstRgba = 16; // QImage::Format_RGBX8888 to RGBA8888_Premultiplied
    constexpr dbus_uint32_t lastRgba = 18;
    return format >= firstRgba && format <= lastRgba;
}

Bitmap bitmapOf(const std::vector<std::uint8_t>& bytes, const Form& form) {
    Bitmap bitmap(static_cast<int>(form.width), static_cast<int>(form.height));
    const bool swaps = swapsRedAndBlue(form.format);
    for (std::size_t y = 0; y < form.height; ++y) {
        std::uint32_t* const row = &bitmap.pixels[y * form.width];
        std::memcpy(row, &bytes[y * form.stride], form.width * sizeof(std::uint32_t));
        for (std::size_t x = 0; swaps && x < form.width; ++x) {
            const std::uint32_t pixel = row[x];
            row[x] = (pixel & 0xFF00FF00U) | ((pixel & 0xFFU) << 16U) | ((pixel >> 16U) & 0xFFU);
        }
    }
    return bitmap;
}

} // namespace

std::optional<KWinCapture::Shot> KWinCapture::capture(const std::string& window) {
    std::array<int, 2> ends{};
    if (bridge_.bus() == nullptr || pipe2(ends.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const auto answer = answerTo(bridge_.bus(), captureCall(window, writing.get()));
    writing.reset();
    const auto form = answer ? formIn(*answer) : std::nullopt;
    if (!form) {
        return std::nullopt;
    }
    const auto bytes =
        readAll(reading.get(), static_cast<std::size_t>(form->stride) * form->height);
    return bytes.empty() ? std::nullopt
                         : std::optional(Shot{bitmapOf(bytes, *form), form->scale, Clock::now()});
}

/// Null when it cannot be captured.
const KWinCapture::Shot* KWinCapture::shotOf(const Window& window) {
    const auto known = shots_.find(window.id);
    if (known != shots_.end() && Clock::now() - known->second.taken < freshness) {
        return &known->second;
    }
    auto shot = capture(window.id);
    if (!shot) {
        shots_.erase(window.id);
        return nullptr;
    }
    // Those of windows that are not looked at any more.
    constexpr auto longestKept = std::chrono::seconds(2);
    std::erase_if(shots_, [longestKept](const auto& entry) {
        return Clock::now() - entry.second.taken > longestKept;
    });
    // The scale that is told may be another than that of the pixels.
    shot->scale = shot->bitmap.width / window.frame.width;
    return &shots_.insert_or_assign(window.id, std::move(*shot)).first->second;
}

double KWinCapture::scaleAt(const Rect& area) const {
    const auto outputs = outputs_();
    for (const Output& output : outputs) {
        if (output.frame.contains({area.midX(), area.midY()})) {
            return output.scale;
        }
    }
    return outputs.empty() ? 1 : outputs.front().scale;
}

/// The windows of an area over each other, the lowest first.
/// @param area in KWin's coordinates
std::optional<Bitmap> KWinCapture::compose(const Rect& area, double scale) {
    const auto size = pixelSizeOf({0, 0, area.width * scale, area.height * scale});
    const auto& windows = bridge_.windows();
    if (!size || !windows) {
        return std::nullopt;
    }
    std::vector<const Window*> shown;
    for (const Window& window : *windows) {
        const Rect shared = intersect(window.frame, area);
        if (shared.isEmpty() || window.pid == getpid()) {
            continue;
        }
        shown.push_back(&window);
        if (shared == area && window.opacity >= 1 && window.kind == Kind::normal) {
            break; // nothing below it shows, but for its round corners
        }
    }
    Bitmap composed(size->width, size->height);
    for (std::size_t place = shown.size(); place-- > 0;) {
        const Window& window = *shown[place];
        const Shot* const shot = shotOf(window);
        if (shot == nullptr) {
            continue;
        }
        PictureCapture picture(shot->bitmap, shot->scale, window.frame.origin());
        const auto layer = picture.captureBelow(area, 0, *size, Interpolation::none);
        for (std::size_t pixel = 0; layer && pixel < composed.pixels.size(); ++pixel) {
            const std::uint32_t source = layer->pixels[pixel];
            const std::uint32_t alpha = source >> 24U;
            if (alpha == 0xFFU) {
                composed.pixels[pixel] = source;
            } else if (alpha != 0) {
                const std::uint32_t below = composed.pixels[pixel];
                const auto mixed = [&](unsigned shift) {
                    const std::uint32_t under = (below >> shift) & 0xFFU;
                    const std::uint32_t over = (source >> shift) & 0xFFU;
                    return std::min(0xFFU, over + under * (0xFFU - alpha) / 0xFFU) << shift;
                };
                composed.pixels[pixel] = 0xFF000000U | mixed(16) | mixed(8) | mixed(0);
            }
        }
    }
    return composed;
}

std::optional<Bitmap> KWinCapture::captureBelow(const Rect& area, std::uint32_t /*windowNumber*/) {
    const auto outputs = outputs_();
    if (outputs.empty()) {
        return std::nullopt;
    }
    const Point origin = outputs.front().frame.origin();
    const Rect there = {area.x + origin.x, area.y + origin.y, area.width, area.height};
    return compose(there, scaleAt(there));
}

std::optional<Bitmap> KWinCapture::captureBelow(const Rect& area, std::uint32_t windowNumber,
                                                IntSize size, Interpolation interpolation) {
    auto bitmap = captureBelow(area, windowNumber);
    if (!bitmap || area.isEmpty()) {
        return std::nullopt;
    }
    const double scale = bitmap->width / area.width;
    return PictureCapture(std::move(*bitmap), scale, area.origin())
        .captureBelow(area, windowNumber, size, interpolation);
}

bool KWinCapture::isAllowed() {
    constexpr auto trusted = std::chrono::seconds(2);
    if (allowed_ && (*allowed_ || Clock::now() - askedAt_ < trusted)) {
        return *allowed_;
    }
    std::array<int, 2> ends{};
    if (bridge_.bus() == nullptr || pipe2(ends.data(), O_CLOEXEC) != 0) {
        return false;
    }
    const Descriptor reading(ends[0]);
    const Descriptor writing(ends[1]);
    // To whom KWin answers, it says that there is no such window.
    const BusMessage call = captureCall("{00000000-0000-0000-0000-000000000000}", writing.get());
    DBusError error = DBUS_ERROR_INIT;
    const BusMessage answer(dbus_connection_send_with_reply_and_block(
        bridge_.bus(), call.get(), patienceMilliseconds, &error));
    allowed_ = answer != nullptr ||
               (error.name != nullptr &&
                std::string_view(error.name).find("InvalidWindow") != std::string_view::npos);
    dbus_error_free(&error);
    askedAt_ = Clock::now();
    return *allowed_;
}

} // namespace lumetry::kwin
