#include "platform/linux/wayland/overlay/buffer.h"

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

#include <limits>
#include <utility>

namespace lumetry::wayland {
namespace {

constexpr std::size_t bytesPerPixel = sizeof(std::uint32_t);

std::size_t lengthOf(IntSize size) {
    return static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) *
           bytesPerPixel;
}

class SharedFile {
public:
    explicit SharedFile(std::size_t length)
        : descriptor_(memfd_create("lumetry-overlay", MFD_CLOEXEC | MFD_ALLOW_SEALING)) {
        if (descriptor_ >= 0 && ftruncate(descriptor_, static_cast<off_t>(length)) != 0) {
            close(std::exchange(descriptor_, -1));
        }
    }
    ~SharedFile() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }

private:
    int descriptor_;
};

} // namespace

struct Buffer::Events {
    static void release(void* data, wl_buffer* /*buffer*/) {
        auto& buffer = *static_cast<Buffer*>(data);
        buffer.busy_ = false;
        // The handler may let go of the buffer.
        const auto handler = buffer.onRelease_;
        handler();
    }
};

std::unique_ptr<Buffer> Buffer::make(wl_shm* shm, IntSize size, std::function<void()> onRelease) {
    const std::size_t length = lengthOf(size);
    if (size.isEmpty() || length > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return nullptr;
    }
    const SharedFile file(length);
    if (file.get() < 0) {
        return nullptr;
    }
    void* const memory = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (memory == MAP_FAILED) {
        return nullptr;
    }
    std::unique_ptr<Buffer> buffer(
        new Buffer({static_cast<std::uint32_t*>(memory), size}, std::move(onRelease)));
    const Owned<wl_shm_pool> pool(
        wl_shm_create_pool(shm, file.get(), static_cast<std::int32_t>(length)));
    const auto stride = static_cast<std::int32_t>(bytesPerPixel) * size.width;
    buffer->proxy_.reset(wl_shm_pool_create_buffer(pool.get(), 0, size.width, size.height, stride,
                                                   WL_SHM_FORMAT_ARGB8888));
    static constexpr wl_buffer_listener listener = {Events::release};
    wl_buffer_add_listener(buffer->proxy_.get(), &listener, buffer.get());
    return buffer;
}

Buffer::Buffer(const Pixels& pixels, std::function<void()> onRelease)
    : pixels_(pixels), onRelease_(std::move(onRelease)) {}

Buffer::~Buffer() {
    munmap(pixels_.first, lengthOf(pixels_.size));
}

void Buffer::show(const DisplayList& list, const Rasterizer& rasterizer) {
    const auto areas = changedAreas(shown_, list);
    paintTiles(pixels_, planTiles(list, areas, pixels_.size, &shown_), list, rasterizer);
    shown_ = list;
}

wl_buffer* Buffer::handOver() {
    busy_ = true;
    return proxy_.get();
}

} // namespace lumetry::wayland
