#include "platform/linux/x11/capture/target.h"

#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <utility>

namespace lumetry::x11 {
namespace {

bool isTranslucent(const xcb_render_pictforminfo_t& format) {
    constexpr std::uint16_t eightBits = 0xFF;
    const xcb_render_directformat_t& direct = format.direct;
    return format.type == XCB_RENDER_PICT_TYPE_DIRECT && format.depth == translucentDepth &&
           direct.alpha_mask == eightBits && direct.alpha_shift == 24 &&
           direct.red_mask == eightBits && direct.red_shift == 16 &&
           direct.green_mask == eightBits && direct.green_shift == 8 &&
           direct.blue_mask == eightBits && direct.blue_shift == 0;
}

/// Memory of that many bytes, zero-filled; null when there is none.
/// @param fileDescriptor of the memory, to be closed by the caller
void* makeMemory(std::size_t bytes, int& fileDescriptor) {
    fileDescriptor = memfd_create("lumetry-capture", MFD_CLOEXEC);
    if (fileDescriptor < 0) {
        return nullptr;
    }
    void* memory = MAP_FAILED;
    if (ftruncate(fileDescriptor, static_cast<off_t>(bytes)) == 0) {
        memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fileDescriptor, 0);
    }
    if (memory == MAP_FAILED) {
        close(fileDescriptor);
        return nullptr;
    }
    return memory;
}

constexpr std::uint32_t allPlanes = 0xFFFFFFFF;

} // namespace

void CaptureFormats::ask() {
    if (std::exchange(isAsked_, true) || !connection_.extensions().render) {
        return;
    }
    const auto reply = connection_.reply(xcb_render_query_pict_formats_reply,
                                         xcb_render_query_pict_formats(connection_.get()));
    if (!reply) {
        return;
    }
    std::unordered_map<xcb_render_pictformat_t, bool> hasAlpha;
    auto format = xcb_render_query_pict_formats_formats_iterator(reply.get());
    for (; format.rem > 0; xcb_render_pictforminfo_next(&format)) {
        hasAlpha[format.data->id] = format.data->direct.alpha_mask != 0;
        if (!translucent_ && isTranslucent(*format.data)) {
            translucent_ = format.data->id;
            ofDepth_[format.data->depth] = format.data->id;
        }
    }
    auto screen = xcb_render_query_pict_formats_screens_iterator(reply.get());
    for (int i = 0; screen.rem > 0; xcb_render_pictscreen_next(&screen), ++i) {
        auto depth = xcb_render_pictscreen_depths_iterator(screen.data);
        for (; i == connection_.screenNumber() && depth.rem > 0;
             xcb_render_pictdepth_next(&depth)) {
            auto visual = xcb_render_pictdepth_visuals_iterator(depth.data);
            for (; visual.rem > 0; xcb_render_pictvisual_next(&visual)) {
                const xcb_render_pictformat_t id = visual.data->format;
                ofVisual_[visual.data->visual] = {id, hasAlpha[id]};
                if (visual.data->visual == connection_.screen().root_visual) {
                    ofDepth_[depth.data->depth] = id;
                }
            }
        }
    }
}

std::optional<xcb_render_pictformat_t> CaptureFormats::translucent() {
    ask();
    return translucent_;
}

std::optional<CaptureFormats::Format> CaptureFormats::ofVisual(xcb_visualid_t visual) {
    ask();
    const auto found = ofVisual_.find(visual);
    return found == ofVisual_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<xcb_render_pictformat_t> CaptureFormats::ofPixmap(std::uint8_t depth) {
    ask();
    const auto found = ofDepth_.find(depth);
    return found == ofDepth_.end() ? std::nullopt : std::optional(found->second);
}

CaptureSegment::CaptureSegment(Connection& connection)
    : connection_(connection), isAvailable_(connection.extensions().sharedMemory),
      segment_(xcb_generate_id(connection.get())) {}

CaptureSegment::~CaptureSegment() {
    free();
}

void CaptureSegment::free() {
    if (memory_) {
        xcb_shm_detach(connection_.get(), segment_);
        munmap(memory_, capacity_);
        memory_ = nullptr;
        capacity_ = 0;
    }
}

bool CaptureSegment::reserve(std::size_t bytes) {
    // The bytes of 400 × 400 pixels, rounded up.
    constexpr std::size_t granularity = std::size_t{640} * 1024;
    if (!isAvailable_ || bytes <= capacity_) {
        return isAvailable_;
    }
    free();
    const std::size_t capacity = (bytes + granularity - 1) / granularity * granularity;
    int fileDescriptor = -1;
    memory_ = makeMemory(capacity, fileDescriptor);
    if (!memory_) {
        return false;
    }
    capacity_ = capacity;
    // The library closes the descriptor once it has been sent.
    xcb_shm_attach_fd(connection_.get(), segment_, fileDescriptor, 0);
    return true;
}

std::span<const std::uint32_t> CaptureSegment::read(xcb_pixmap_t pixmap, IntSize size) {
    const std::size_t count =
        static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
    if (!reserve(count * sizeof(std::uint32_t))) {
        return {};
    }
    const auto reply = connection_.reply(
        xcb_shm_get_image_reply,
        xcb_shm_get_image(connection_.get(), pixmap, 0, 0, static_cast<std::uint16_t>(size.width),
                          static_cast<std::uint16_t>(size.height), allPlanes,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, 0));
    if (!reply || reply->size != count * sizeof(std::uint32_t)) {
        // What keeps the server from sharing memory will not pass.
        free();
        isAvailable_ = false;
        return {};
    }
    return {static_cast<const std::uint32_t*>(memory_), count};
}

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
    if (size_ != IntSize{}) {
        xcb_render_free_picture(connection_.get(), picture_);
        xcb_free_pixmap(connection_.get(), pixmap_);
        size_ = {};
    }
}

void CaptureTarget::reserve(IntSize size) {
    if (size.width <= size_.width && size.height <= size_.height) {
        return;
    }
    free();
    auto* const c = connection_.get();
    size_ = size;
    xcb_create_pixmap(c, translucentDepth, pixmap_, connection_.root(),
                      static_cast<std::uint16_t>(size.width),
                      static_cast<std::uint16_t>(size.height));
    xcb_render_create_picture(c, picture_, pixmap_, format_, 0, nullptr);
}

std::span<const std::uint32_t> CaptureTarget::fetch(IntSize size) {
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
