#include "platform/linux/x11/capture/target.h"

#include <bit>

namespace lumetry::x11 {
namespace {

constexpr std::uint8_t depth = 32;
constexpr std::uint32_t allPlanes = 0xFFFFFFFF;

} // namespace

bool hasOtherByteOrder(const Connection& connection) {
    const bool isBig =
        xcb_get_setup(connection.get())->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    return isBig != (std::endian::native == std::endian::big);
}

CaptureTarget::CaptureTarget(Connection& connection, xcb_render_pictformat_t translucentFormat)
    : connection_(connection), format_(translucentFormat),
      pixmap_(xcb_generate_id(connection.get())), picture_(xcb_generate_id(connection.get())),
      segment_(connection) {}

CaptureTarget::~CaptureTarget() {
    free();
}

void CaptureTarget::free() {
    if (size_ != PixelSize{}) {
        xcb_render_free_picture(connection_.get(), picture_);
        xcb_free_pixmap(connection_.get(), pixmap_);
        size_ = {};
    }
}

void CaptureTarget::reserve(PixelSize size) {
    if (size.width <= size_.width && size.height <= size_.height) {
        return;
    }
    free();
    auto* const c = connection_.get();
    size_ = size;
    xcb_create_pixmap(c, depth, pixmap_, connection_.root(), static_cast<std::uint16_t>(size.width),
                      static_cast<std::uint16_t>(size.height));
    xcb_render_create_picture(c, picture_, pixmap_, format_, 0, nullptr);
}

std::span<const std::uint32_t> CaptureTarget::fetch(PixelSize size) {
    const std::size_t count =
        static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    if (const auto words = segment_.read(pixmap_, size); !words.empty()) {
        return words;
    }
    image_ = connection_.reply(xcb_get_image_reply,
                               xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_,
                                             0, 0, static_cast<std::uint16_t>(size.width),
                                             static_cast<std::uint16_t>(size.height), allPlanes));
    if (!image_ || static_cast<std::size_t>(xcb_get_image_data_length(image_.get())) !=
                       count * sizeof(std::uint32_t)) {
        return {};
    }
    // The reply's data begins 32 bytes into memory that malloc has aligned.
    const void* const data = xcb_get_image_data(image_.get());
    return {static_cast<const std::uint32_t*>(data), count};
}

} // namespace lumetry::x11
