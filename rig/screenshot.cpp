#include "rig/screenshot.h"

#include <png.h>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace lumetry::desktop {
Bitmap screenshot(const XConnection& server, const Rect& area) {
    Bitmap bitmap(static_cast<int>(area.width), static_cast<int>(area.height));
    const auto request = xcb_get_image(
        server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, server.root(), static_cast<std::int16_t>(area.x),
        static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(bitmap.width),
        static_cast<std::uint16_t>(bitmap.height), ~std::uint32_t{0});
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(server.get(), request, nullptr));
    const std::size_t pixelSize = server.screen().root_depth > 16 ? 4 : 2;
    const auto width = static_cast<std::size_t>(bitmap.width);
    const std::size_t rowSize = (width * pixelSize + 3) / 4 * 4;
    if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) !=
                      rowSize * static_cast<std::size_t>(bitmap.height)) {
        throw std::runtime_error("the X server gives out no picture of that area");
    }
    const std::uint8_t* const data = xcb_get_image_data(reply.get());
    for (std::size_t i = 0; i < bitmap.pixels.size(); ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, data + i / width * rowSize + i % width * pixelSize, pixelSize);
        bitmap.pixels[i] = server.colorOf(pixel);
    }
    return bitmap;
}

Bitmap screenshot(const XConnection& server) {
    return screenshot(server, {0, 0, static_cast<double>(server.screen().width_in_pixels),
                               static_cast<double>(server.screen().height_in_pixels)});
}

std::optional<Bitmap> settledScreenshot(const XConnection& server, const Rect& area,
                                        std::chrono::milliseconds rest,
                                        std::chrono::milliseconds deadline) {
    auto last = screenshot(server, area);
    auto since = std::chrono::steady_clock::now();
    const bool settled = waitUntil(
        [&] {
            auto next = screenshot(server, area);
            const auto now = std::chrono::steady_clock::now();
            if (next.pixels != last.pixels) {
                last = std::move(next);
                since = now;
            }
            return now - since >= rest;
        },
        deadline);
    return settled ? std::optional(std::move(last)) : std::nullopt;
}

void writePng(const Bitmap& bitmap, const std::filesystem::path& file) {
    if (file.has_parent_path()) {
        std::filesystem::create_directories(file.parent_path());
    }
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(bitmap.width);
    image.height = static_cast<png_uint_32>(bitmap.height);
    // The words of a bitmap are bytes in this order on a little-endian machine.
    image.format = PNG_FORMAT_BGRA;
    if (png_image_write_to_file(&image, file.c_str(), 0, bitmap.pixels.data(), 0, nullptr) == 0) {
        throw std::runtime_error("cannot write " + file.string() + ": " + image.message);
    }
}

} // namespace lumetry::desktop
