#include "rig/kwin_screenshot.h"

#include "rig/bus.h"
#include "rig/processes/file_descriptor.h"
#include "rig/processes/wait_until.h"

#include <gio/gunixfdlist.h>

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace lumetry::desktop {
namespace {

struct UnrefObject {
    void operator()(void* object) const { g_object_unref(object); }
};

/// How the pixels that come through the pipe are laid out.
struct Layout {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t stride = 0; ///< bytes
    std::uint32_t format = 0; ///< of QImage
};

Layout layoutOf(GVariant* answer) {
    const Variant results(g_variant_get_child_value(answer, 0));
    Layout layout;
    if (g_variant_lookup(results.get(), "width", "u", &layout.width) == FALSE ||
        g_variant_lookup(results.get(), "height", "u", &layout.height) == FALSE ||
        g_variant_lookup(results.get(), "stride", "u", &layout.stride) == FALSE ||
        g_variant_lookup(results.get(), "format", "u", &layout.format) == FALSE) {
        throw std::runtime_error("KWin does not say how a screenshot is laid out");
    }
    return layout;
}

Layout askForScreen(GDBusConnection& bus, const std::string& output, int pipeEnd) {
    const std::unique_ptr<GUnixFDList, UnrefObject> descriptors(g_unix_fd_list_new());
    const int index = g_unix_fd_list_append(descriptors.get(), pipeEnd, nullptr);
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "native-resolution", g_variant_new_boolean(TRUE));
    GError* failure = nullptr;
    const Variant answer(g_dbus_connection_call_with_unix_fd_list_sync(
        &bus, "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2",
        "CaptureScreen", g_variant_new("(sa{sv}h)", output.c_str(), &options, index),
        G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NONE, busTimeoutMilliseconds,
        descriptors.get(), nullptr, nullptr, &failure));
    if (!answer) {
        const std::string message = failure->message;
        g_error_free(failure);
        throw std::runtime_error("KWin gives out no screenshot: " + message);
    }
    return layoutOf(answer.get());
}

std::vector<std::byte> readAll(int descriptor, std::size_t size) {
    std::vector<std::byte> bytes(size);
    std::size_t filled = 0;
    while (filled < size) {
        pollfd readable = {descriptor, POLLIN, 0};
        const int ready = poll(&readable, 1, static_cast<int>(generousDeadline.count()));
        const auto count =
            ready == 1 ? read(descriptor, bytes.data() + filled, size - filled) : ssize_t{0};
        if (count <= 0) {
            throw std::runtime_error("KWin's screenshot is incomplete");
        }
        filled += static_cast<std::size_t>(count);
    }
    return bytes;
}

} // namespace

Bitmap kwinScreenshot(const std::string& sessionBus, const std::string& output) {
    constexpr std::uint32_t rgb32 = 4; // to 6: ARGB32 and ARGB32_Premultiplied, alike where opaque
    constexpr std::uint32_t argb32Premultiplied = 6;
    const auto bus = connectToBus(sessionBus);
    auto pipe = makePipe();
    const Layout layout = askForScreen(*bus, output, pipe.writeEnd.get());
    pipe.writeEnd.reset();
    if (layout.format < rgb32 || layout.format > argb32Premultiplied) {
        throw std::runtime_error("KWin's screenshot has an unknown format");
    }
    const auto bytes =
        readAll(pipe.readEnd.get(), std::size_t{layout.stride} * std::size_t{layout.height});
    Bitmap bitmap(static_cast<int>(layout.width), static_cast<int>(layout.height));
    for (std::size_t row = 0; row < layout.height; ++row) {
        std::memcpy(&bitmap.pixels[row * layout.width], &bytes[row * layout.stride],
                    layout.width * sizeof(std::uint32_t));
    }
    for (std::uint32_t& pixel : bitmap.pixels) {
        pixel |= 0xFF000000;
    }
    return bitmap;
}

} // namespace lumetry::desktop
