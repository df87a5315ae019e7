#pragma once

#include "platform/linux/tiles/tiles.h"
#include "platform/linux/x11/connection/connection.h"
#include "platform/linux/x11/overlay/pixels.h"
#include "platform/rasterizer.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumetry::x11 {

/// What is to be put into a window.
struct Painting {
    const DisplayList& list;
    std::span<const Rect> areas; ///< pixels of view space, like all here
    IntSize view;
    const DisplayList* before = nullptr; ///< what the areas show now; null when that is not known
};

/// Puts a drawing into a window. Nothing of its pixels is kept here.
class OverlaySurface {
public:
    OverlaySurface(Connection& connection, xcb_window_t window, const PixelFormat& format);
    OverlaySurface(const OverlaySurface&) = delete;
    OverlaySurface& operator=(const OverlaySurface&) = delete;
    ~OverlaySurface();

    [[nodiscard]] Edges edges() const { return edges_; }
    /// Smooth: the whole window is there, and shines through where nothing is drawn. Hard: the
    /// window is only where something opaque is drawn. The drawing has to be put in again.
    void setEdges(Edges edges);
    /// Puts in what the drawing shows in the areas, and takes out what was there.
    void paint(const Painting& painting, const Rasterizer& rasterizer);
    /// Takes everything out that has a shape of its own; the window is hidden.
    void clear();
    /// Whether the last painting filled a part of the window that the event says to be in want of
    /// it, later than the event came about.
    [[nodiscard]] bool hasPainted(const xcb_generic_event_t& exposure) const;

private:
    struct Filled {
        std::uint32_t pixel;
        std::vector<IntRect> areas; ///< of the window, y downwards
    };
    struct Put {
        IntPoint origin; ///< in the window, y downwards
        Bitmap bitmap;
    };
    /// What one painting sends.
    struct Batch {
        std::vector<IntRect> touched;
        std::vector<IntRect> opaque;
        std::vector<Filled> filled;
        std::vector<Put> puts;
    };

    [[nodiscard]] Batch prepare(const Painting& painting, const Rasterizer& rasterizer) const;
    /// @param areas of the window, y downwards
    void addFilled(Batch& batch, std::uint32_t color, std::span<const IntRect> areas) const;
    void addStripes(Batch& batch, const TilePlan::Striped& striped, const Bitmap& sample,
                    std::int32_t viewHeight) const;
    void addPuts(Batch& batch, const IntRect& rect, const Painting& painting,
                 const Rasterizer& rasterizer) const;
    void reshape(const Batch& batch);
    void fill(const Filled& filled);
    void put(const Put& put);

    Connection& connection_;
    xcb_window_t window_;
    PixelFormat format_;
    xcb_gcontext_t context_;
    std::uint32_t foreground_ = 0;
    Edges edges_ = Edges::hard;
    std::uint32_t shape_; ///< region of the window that is there, while edges are hard
    std::vector<IntRect> lastTouched_;
    std::uint32_t lastPaintBegan_ = 0; ///< number of the first request of the last painting
};

} // namespace lumetry::x11
