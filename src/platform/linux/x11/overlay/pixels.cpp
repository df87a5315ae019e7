#include "platform/linux/x11/overlay/pixels.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace lumetry::x11 {
namespace {

constexpr std::uint32_t redBits = 0xFF0000;
constexpr std::uint32_t greenBits = 0xFF00;
constexpr std::uint32_t blueBits = 0xFF;
constexpr std::uint8_t translucentDepth = 32;

PixelFormat formatOf(const xcb_setup_t& setup, std::uint8_t depth, const xcb_visualtype_t& visual) {
    PixelFormat format;
    format.visual = visual.visual_id;
    format.depth = depth;
    format.redMask = visual.red_mask;
    format.greenMask = visual.green_mask;
    format.blueMask = visual.blue_mask;
    format.mostSignificantByteFirst = setup.image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    auto formats = xcb_setup_pixmap_formats_iterator(&setup);
    for (; formats.rem > 0; xcb_format_next(&formats)) {
        if (formats.data->depth == depth) {
            format.bitsPerPixel = formats.data->bits_per_pixel;
            format.scanlinePad = formats.data->scanline_pad;
        }
    }
    return format;
}

/// The eight bits of a component brought to where the mask wants them, so that the strongest of one
/// is the strongest of the other.
std::uint32_t placed(std::uint32_t component, std::uint32_t mask) {
    constexpr std::uint64_t strongest = 0xFF;
    const std::uint64_t most = mask >> std::countr_zero(mask);
    const std::uint64_t value = (component * most + strongest / 2) / strongest;
    return static_cast<std::uint32_t>(value) << std::countr_zero(mask);
}

bool isAsInBitmaps(const PixelFormat& format) {
    const bool nativeOrder =
        format.mostSignificantByteFirst == (std::endian::native == std::endian::big);
    return nativeOrder && format.bitsPerPixel == 32 && format.redMask == redBits &&
           format.greenMask == greenBits && format.blueMask == blueBits;
}

template<class Wanted>
std::optional<PixelFormat> findFormat(const xcb_setup_t& setup, const xcb_screen_t& screen,
                                      Wanted wanted) {
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
            const bool trueColor = visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR;
            const PixelFormat format = formatOf(setup, depths.data->depth, *visuals.data);
            if (trueColor && format.bitsPerPixel >= 16 && wanted(format)) {
                return format;
            }
        }
    }
    return std::nullopt;
}

std::vector<IntRect> runsOf(const Bitmap& bitmap, int row, IntPoint origin) {
    std::vector<IntRect> runs;
    for (int x = 0; x < bitmap.width; ++x) {
        if (!isOpaque(bitmap.at(x, row))) {
            continue;
        }
        const int start = x;
        while (x < bitmap.width && isOpaque(bitmap.at(x, row))) {
            ++x;
        }
        runs.push_back({origin.x + start, origin.y + row, x - start, 1});
    }
    return runs;
}

} // namespace

std::optional<PixelFormat> translucentFormat(const xcb_setup_t& setup, const xcb_screen_t& screen) {
    auto format = findFormat(setup, screen, [](const PixelFormat& one) {
        return one.depth == translucentDepth && one.redMask == redBits &&
               one.greenMask == greenBits && one.blueMask == blueBits;
    });
    if (format) {
        format->hasAlpha = true;
    }
    return format;
}

std::optional<PixelFormat> rootFormat(const xcb_setup_t& setup, const xcb_screen_t& screen) {
    return findFormat(setup, screen,
                      [&](const PixelFormat& one) { return one.visual == screen.root_visual; });
}

std::uint32_t pixelOf(const PixelFormat& format, std::uint32_t color) {
    constexpr unsigned redShift = 16;
    constexpr unsigned greenShift = 8;
    const std::uint32_t rgb = placed((color & redBits) >> redShift, format.redMask) |
                              placed((color & greenBits) >> greenShift, format.greenMask) |
                              placed(color & blueBits, format.blueMask);
    return format.hasAlpha ? rgb | (color & 0xFF000000) : rgb;
}

bool isOpaque(std::uint32_t color) {
    constexpr unsigned alphaShift = 24;
    constexpr std::uint32_t leastAlpha = 128;
    return (color >> alphaShift) >= leastAlpha;
}

std::size_t bytesPerRow(const PixelFormat& format, int width) {
    const std::size_t pad = format.scanlinePad;
    const std::size_t bits = static_cast<std::size_t>(width) * format.bitsPerPixel;
    return (bits + pad - 1) / pad * pad / 8;
}

std::vector<std::uint8_t> packed(const PixelFormat& format, const Bitmap& bitmap, int firstRow,
                                 int rows) {
    const std::size_t stride = bytesPerRow(format, bitmap.width);
    std::vector<std::uint8_t> bytes(stride * static_cast<std::size_t>(rows));
    const auto* const first =
        bitmap.pixels.data() + static_cast<std::ptrdiff_t>(firstRow) * bitmap.width;
    if (isAsInBitmaps(format)) {
        std::memcpy(bytes.data(), first, bytes.size());
        return bytes;
    }
    const unsigned size = format.bitsPerPixel / 8;
    for (int row = 0; row < rows; ++row) {
        for (int x = 0; x < bitmap.width; ++x) {
            const std::uint32_t pixel = pixelOf(format, bitmap.at(x, firstRow + row));
            auto* const target =
                &bytes[static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(x) * size];
            for (unsigned i = 0; i < size; ++i) {
                const unsigned place = format.mostSignificantByteFirst ? size - 1 - i : i;
                target[place] = static_cast<std::uint8_t>(pixel >> (8 * i));
            }
        }
    }
    return bytes;
}

std::vector<IntRect> opaqueParts(const Bitmap& bitmap, IntPoint origin) {
    std::vector<IntRect> parts;
    std::vector<IntRect> open; // those that reach down to the row before
    for (int row = 0; row < bitmap.height; ++row) {
        std::vector<IntRect> runs = runsOf(bitmap, row, origin);
        for (IntRect& run : runs) {
            const auto above = std::ranges::find_if(open, [&](const IntRect& part) {
                return part.x == run.x && part.width == run.width;
            });
            if (above != open.end()) {
                run.y = above->y;
                run.height = above->height + 1;
                open.erase(above);
            }
        }
        parts.insert(parts.end(), open.begin(), open.end());
        open = std::move(runs);
    }
    parts.insert(parts.end(), open.begin(), open.end());
    return parts;
}

} // namespace lumetry::x11
