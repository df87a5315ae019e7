#include "platform/linux/x11/capture/segment.h"

#include <sys/mman.h>
#include <unistd.h>

namespace lumetry::x11 {
namespace {

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

} // namespace

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

std::span<const std::uint32_t> CaptureSegment::read(xcb_pixmap_t pixmap, PixelSize size) {
    constexpr std::uint32_t allPlanes = 0xFFFFFFFF;
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

} // namespace lumetry::x11
