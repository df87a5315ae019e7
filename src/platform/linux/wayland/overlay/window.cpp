#include "platform/linux/wayland/overlay/window.h"

#include "platform/moved_canvas.h"
#include "platform/scaled_canvas.h"

#include <algorithm>
#include <utility>

namespace lumetry::wayland {
namespace {

bool contains(const Rect& outer, const Rect& inner) {
    return intersect(outer, inner) == inner;
}

/// Those that show something that no other one shows: where one mirrors another, a surface of
/// either is on both.
std::vector<Output> outputsToCover(const std::vector<Output>& outputs) {
    std::vector<Output> covered;
    for (const Output& output : outputs) {
        const bool isShownAlready = std::ranges::any_of(covered, [&output](const Output& other) {
            return contains(other.frame, output.frame);
        });
        if (!isShownAlready) {
            std::erase_if(covered, [&output](const Output& other) {
                return contains(output.frame, other.frame);
            });
            covered.push_back(output);
        }
    }
    return covered;
}

} // namespace

WaylandOverlayWindow::WaylandOverlayWindow(const OverlaySurroundings& surroundings,
                                           const Rect& contentRect)
    : surroundings_(surroundings),
      onDesktop_(surroundings.outputs.layout().fromScreenSpace(contentRect)) {
    outputChange_ = surroundings_.outputs.onChange([this] {
        if (shown_) {
            coverOutputs();
        }
    });
}

WaylandOverlayWindow::~WaylandOverlayWindow() {
    orderOut();
}

void WaylandOverlayWindow::setContentView(ContentView& view) {
    view_ = &view;
    setNeedsDisplay();
}

Rect WaylandOverlayWindow::frame() const {
    return surroundings_.outputs.layout().toScreenSpace(onDesktop_);
}

void WaylandOverlayWindow::setFrame(const Rect& frame) {
    onDesktop_ = surroundings_.outputs.layout().fromScreenSpace(frame);
    setNeedsDisplay();
}

void WaylandOverlayWindow::orderFrontRegardless() {
    if (!std::exchange(shown_, true)) {
        coverOutputs();
        return;
    }
    for (Cover& cover : covers_) {
        cover.toBeRaised = cover.surface && cover.surface->isPresented();
    }
    scheduleRepaint();
}

void WaylandOverlayWindow::orderOut() {
    shown_ = false;
    covers_.clear();
    surroundings_.connection.flush();
}

void WaylandOverlayWindow::coverOutputs() {
    const auto outputs = outputsToCover(surroundings_.outputs.layout().outputs);
    std::erase_if(covers_, [&outputs](const Cover& cover) {
        return std::ranges::find(outputs, cover.output, &Output::global) == outputs.end();
    });
    for (const Output& output : outputs) {
        Cover* const cover = coverOf(output.global);
        if (!cover) {
            covers_.push_back({makeSurface(output), output.global});
        } else if (cover->surface) {
            cover->surface->setOutput(output);
        }
    }
    setNeedsDisplay();
    surroundings_.connection.flush();
}

std::unique_ptr<OverlaySurface> WaylandOverlayWindow::makeSurface(const Output& output) {
    const std::uint32_t global = output.global;
    OverlaySurface::Handlers handlers;
    handlers.onReady = [this] { scheduleRepaint(); };
    handlers.onClosed = [this, global] {
        // Not at once, for it is the surface that says so.
        surroundings_.connection.runLoop().async(lifetime_.guard([this, global] {
            if (Cover* const cover = coverOf(global)) {
                cover->surface.reset();
                cover->lower.reset();
                surroundings_.connection.flush();
            }
        }));
    };
    wl_output* const proxy = surroundings_.outputs.proxy(global);
    return proxy ? std::make_unique<OverlaySurface>(surroundings_.makers, proxy, output,
                                                    std::move(handlers))
                 : nullptr;
}

void WaylandOverlayWindow::raise(Cover& cover) {
    // A surface cannot be raised, but a new one lies above all others.
    cover.toBeRaised = false;
    cover.lower = std::move(cover.surface);
    cover.surface = makeSurface(cover.lower->output());
    cover.stale = true;
}

WaylandOverlayWindow::Cover* WaylandOverlayWindow::coverOf(std::uint32_t output) {
    const auto found = std::ranges::find(covers_, output, &Cover::output);
    return found == covers_.end() ? nullptr : &*found;
}

void WaylandOverlayWindow::setNeedsDisplay() {
    for (Cover& cover : covers_) {
        cover.stale = true;
    }
    scheduleRepaint();
}

void WaylandOverlayWindow::scheduleRepaint() {
    if (!shown_ || repaintScheduled_) {
        return;
    }
    repaintScheduled_ = true;
    surroundings_.connection.runLoop().async(lifetime_.guard([this] {
        repaintScheduled_ = false;
        repaint();
    }));
}

void WaylandOverlayWindow::repaint() {
    if (!shown_ || surroundings_.connection.isLost()) {
        return;
    }
    for (Cover& cover : covers_) {
        if (cover.surface) {
            repaint(cover);
        }
    }
    surroundings_.connection.flush();
}

void WaylandOverlayWindow::repaint(Cover& cover) {
    if (cover.stale && cover.surface->isReady()) {
        cover.stale = false;
        cover.surface->show(drawView(*cover.surface), surroundings_.rasterizer);
        if (!cover.surface->isPresented()) {
            cover.lower.reset(); // there is nothing to be shown
        }
    }
    if (cover.surface->isShown()) {
        cover.lower.reset();
        if (cover.toBeRaised) {
            raise(cover);
        }
    }
}

DisplayList WaylandOverlayWindow::drawView(const OverlaySurface& surface) {
    RecordingCanvas pixels(surroundings_.rasterizer);
    if (!view_) {
        return {};
    }
    const Rect& output = surface.output().frame;
    const double scale = surface.scale();
    // Rows are counted from the top: there whole pixels begin.
    const double height = surface.size().height / scale;
    const Point offset = {onDesktop_.x - output.x, output.y + height - onDesktop_.maxY()};
    if (scale == 1) {
        MovedCanvas canvas(pixels, offset);
        view_->draw(canvas, frame());
    } else {
        ScaledCanvas points(pixels, scale);
        MovedCanvas canvas(points, offset);
        view_->draw(canvas, frame());
    }
    return pixels.take();
}

} // namespace lumetry::wayland
