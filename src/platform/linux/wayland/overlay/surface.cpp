#include "platform/linux/wayland/overlay/surface.h"

#include "platform/linux/wayland/connection/layer_shell.h"

#include <viewporter-client-protocol.h>
#include <wayland-client.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace lumetry::wayland {
namespace {

constexpr std::uint32_t compositorVersion = 4; ///< damage in pixels
constexpr std::uint32_t layerShellVersion = 3;
constexpr std::size_t mostBuffers = 2;

IntRect wholeOf(IntSize size) {
    return {0, 0, size.width, size.height};
}

} // namespace

SurfaceMakers bindSurfaceMakers(const Connection& connection) {
    return {
        connection.bindFirst<wl_compositor>(wl_compositor_interface, compositorVersion),
        connection.bindFirst<wl_shm>(wl_shm_interface, 1),
        connection.bindFirst<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, layerShellVersion),
        connection.bindFirst<wp_viewporter>(wp_viewporter_interface, 1)};
}

struct OverlaySurface::LayerEvents {
    static void configure(void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial,
                          std::uint32_t width, std::uint32_t height) {
        zwlr_layer_surface_v1_ack_configure(layer, serial);
        static_cast<OverlaySurface*>(data)->configured(
            {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)});
    }
    static void closed(void* data, zwlr_layer_surface_v1* /*layer*/) {
        static_cast<OverlaySurface*>(data)->handlers_.onClosed();
    }
};

struct OverlaySurface::FrameEvents {
    static void done(void* data, wl_callback* /*callback*/, std::uint32_t /*time*/) {
        auto& surface = *static_cast<OverlaySurface*>(data);
        surface.frame_.reset();
        surface.handlers_.onReady();
    }
};

OverlaySurface::OverlaySurface(const SurfaceMakers& makers, wl_output* proxy, Output output,
                               Handlers handlers)
    : makers_(makers), output_(std::move(output)), handlers_(std::move(handlers)),
      surface_(wl_compositor_create_surface(makers.compositor.get())) {
    if (makers.viewporter) {
        viewport_.reset(wp_viewporter_get_viewport(makers.viewporter.get(), surface_.get()));
    }
    const Owned<wl_region> nowhere(wl_compositor_create_region(makers.compositor.get()));
    wl_surface_set_input_region(surface_.get(), nowhere.get());
    layer_.reset(zwlr_layer_shell_v1_get_layer_surface(makers.layerShell.get(), surface_.get(),
                                                       proxy, ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY,
                                                       "lumetry-overlay"));
    static constexpr zwlr_layer_surface_v1_listener listener = {LayerEvents::configure,
                                                                LayerEvents::closed};
    zwlr_layer_surface_v1_add_listener(layer_.get(), &listener, this);
    zwlr_layer_surface_v1_set_anchor(
        layer_.get(), ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                          ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    // Over panels, too.
    zwlr_layer_surface_v1_set_exclusive_zone(layer_.get(), -1);
    zwlr_layer_surface_v1_set_keyboard_interactivity(
        layer_.get(), ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
    wl_surface_commit(surface_.get());
}

OverlaySurface::~OverlaySurface() = default;

void OverlaySurface::setOutput(const Output& output) {
    const IntSize before = size();
    output_ = output;
    if (size() != before) {
        retireBuffers();
        handlers_.onReady();
    }
}

double OverlaySurface::scale() const {
    return viewport_ ? output_.scale : output_.bufferScale;
}

IntSize OverlaySurface::size() const {
    const auto pixels = [this](std::int32_t points) {
        return static_cast<std::int32_t>(std::lround(points * scale()));
    };
    return {pixels(points_.width), pixels(points_.height)};
}

void OverlaySurface::configured(IntSize points) {
    if (points == points_) {
        return;
    }
    points_ = points;
    retireBuffers();
    handlers_.onReady();
}

void OverlaySurface::retireBuffers() {
    presented_ = false;
    shown_.clear();
    std::ranges::copy_if(std::make_move_iterator(buffers_.begin()),
                         std::make_move_iterator(buffers_.end()), std::back_inserter(retired_),
                         [](const auto& buffer) { return buffer->isBusy(); });
    buffers_.clear();
}

bool OverlaySurface::isReady() const {
    const bool hasBuffer =
        buffers_.size() < mostBuffers ||
        std::ranges::any_of(buffers_, [](const auto& buffer) { return !buffer->isBusy(); });
    return !points_.isEmpty() && !frame_ && hasBuffer;
}

Buffer* OverlaySurface::freeBuffer() {
    const auto found =
        std::ranges::find_if(buffers_, [](const auto& buffer) { return !buffer->isBusy(); });
    if (found != buffers_.end()) {
        return found->get();
    }
    auto buffer = Buffer::make(makers_.shm.get(), size(), [this] {
        std::erase_if(retired_, [](const auto& one) { return !one->isBusy(); });
        handlers_.onReady();
    });
    return buffer ? buffers_.emplace_back(std::move(buffer)).get() : nullptr;
}

void OverlaySurface::show(DisplayList list, const Rasterizer& rasterizer) {
    const IntSize view = size();
    std::vector<IntRect> changed = planTiles(list, changedAreas(shown_, list), view, &shown_).all();
    if (changed.empty()) {
        shown_ = std::move(list);
        return;
    }
    Buffer* const buffer = freeBuffer();
    if (!buffer) {
        return;
    }
    buffer->show(list, rasterizer);
    if (!presented_) {
        changed = {wholeOf(view)};
    }
    present(*buffer, changed);
    shown_ = std::move(list);
}

void OverlaySurface::present(Buffer& buffer, const std::vector<IntRect>& changed) {
    static constexpr wl_callback_listener listener = {FrameEvents::done};
    auto* const surface = surface_.get();
    if (viewport_) {
        wp_viewport_set_destination(viewport_.get(), points_.width, points_.height);
    } else {
        wl_surface_set_buffer_scale(surface, output_.bufferScale);
    }
    wl_surface_attach(surface, buffer.handOver(), 0, 0);
    for (const IntRect& area : changed) {
        const IntRect rect = flipped(area, buffer.size().height);
        wl_surface_damage_buffer(surface, rect.x, rect.y, rect.width, rect.height);
    }
    frame_.reset(wl_surface_frame(surface));
    wl_callback_add_listener(frame_.get(), &listener, this);
    wl_surface_commit(surface);
    presented_ = true;
}

} // namespace lumetry::wayland
