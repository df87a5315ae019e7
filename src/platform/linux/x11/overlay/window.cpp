#include "platform/linux/x11/overlay/window.h"

#include "platform/scaled_canvas.h"

#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace lumetry::x11 {
namespace {

PixelFormat bestFormat(const Connection& connection) {
    const auto& setup = *xcb_get_setup(connection.get());
    if (const auto translucent = translucentFormat(setup, connection.screen())) {
        return *translucent;
    }
    return rootFormat(setup, connection.screen()).value_or(PixelFormat{});
}

void setText(Connection& connection, xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
             std::string_view text) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

void setNumber(Connection& connection, xcb_window_t window, Atom property, xcb_atom_t type,
               std::uint32_t number) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, connection.atom(property),
                        type, 32, 1, &number);
}

/// A place that a window can have.
IntRect wholePixels(const Rect& onRoot) {
    constexpr double largest = 0x7FFF;
    const Rect rect = onRoot.isEmpty() ? Rect{0, 0, 1, 1} : onRoot;
    const auto within = [largest](double length, double low) {
        return static_cast<std::int32_t>(std::clamp(std::round(length), low, largest));
    };
    return {within(rect.x, -largest), within(rect.y, -largest), within(rect.width, 1),
            within(rect.height, 1)};
}

} // namespace

X11OverlayWindow::X11OverlayWindow(const OverlaySurroundings& surroundings, const Rect& contentRect,
                                   const OverlayWindowStyle& style)
    : surroundings_(surroundings), connection_(surroundings.connection),
      format_(bestFormat(connection_)),
      onRoot_(wholePixels(surroundings.windows.layout().fromScreenSpace(contentRect))) {
    createWindow();
    describeWindow(style);
    surface_.emplace(connection_, window_, format_);
    surface_->setEdges(wantedEdges());
    events_ = connection_.onEvent([this](const auto& event) { handle(event); });
    compositing_ = surroundings_.compositingManager.onChange([this] {
        surface_->setEdges(wantedEdges());
        repaintEverything();
    });
    scaleChange_ = surroundings_.windows.onScaleChange([this] { setNeedsDisplay(); });
    connection_.flush();
}

X11OverlayWindow::~X11OverlayWindow() {
    stayOnTop_.reset();
    surface_.reset();
    xcb_destroy_window(connection_.get(), window_);
    xcb_free_colormap(connection_.get(), colormap_);
    connection_.flush();
}

void X11OverlayWindow::createWindow() {
    auto* const c = connection_.get();
    window_ = xcb_generate_id(c);
    colormap_ = xcb_generate_id(c);
    xcb_create_colormap(c, XCB_COLORMAP_ALLOC_NONE, colormap_, connection_.root(), format_.visual);
    xcb_create_window_value_list_t values{};
    values.border_pixel = 0;
    values.override_redirect = 1;
    values.event_mask = XCB_EVENT_MASK_EXPOSURE;
    values.colormap = colormap_;
    xcb_create_window_aux(
        c, format_.depth, window_, connection_.root(), static_cast<std::int16_t>(onRoot_.x),
        static_cast<std::int16_t>(onRoot_.y), static_cast<std::uint16_t>(onRoot_.width),
        static_cast<std::uint16_t>(onRoot_.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
        format_.visual,
        XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
        &values);
}

void X11OverlayWindow::describeWindow(const OverlayWindowStyle& style) {
    using namespace std::string_view_literals;
    auto* const c = connection_.get();
    constexpr std::string_view title = "Lumetry overlay";
    setText(connection_, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "lumetry\0Lumetry\0"sv);
    setText(connection_, window_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    setText(connection_, window_, connection_.atom(Atom::netWmName),
            connection_.atom(Atom::utf8String), title);
    setNumber(connection_, window_, Atom::netWmPid, XCB_ATOM_CARDINAL,
              static_cast<std::uint32_t>(getpid()));
    setNumber(connection_, window_, Atom::netWmWindowType, XCB_ATOM_ATOM,
              connection_.atom(Atom::netWmWindowTypeNotification));
    if (!style.hasShadow) {
        setNumber(connection_, window_, Atom::comptonShadow, XCB_ATOM_CARDINAL, 0);
    }
    // A window as large as the screen would otherwise have compositing switched off.
    constexpr std::uint32_t neverBypass = 2;
    setNumber(connection_, window_, Atom::netWmBypassCompositor, XCB_ATOM_CARDINAL, neverBypass);
    if (style.ignoresMouseEvents) {
        const xcb_xfixes_region_t nothing = xcb_generate_id(c);
        xcb_xfixes_create_region(c, nothing, 0, nullptr);
        xcb_xfixes_set_window_shape_region(c, window_, XCB_SHAPE_SK_INPUT, 0, 0, nothing);
        xcb_xfixes_destroy_region(c, nothing);
    }
}

Edges X11OverlayWindow::wantedEdges() const {
    return format_.hasAlpha && surroundings_.compositingManager.isRunning() ? Edges::smooth
                                                                            : Edges::hard;
}

void X11OverlayWindow::setContentView(ContentView& view) {
    view_ = &view;
    setNeedsDisplay();
}

Rect X11OverlayWindow::frame() const {
    return surroundings_.windows.layout().toScreenSpace(toRect(onRoot_));
}

void X11OverlayWindow::setFrame(const Rect& frame) {
    onRoot_ = wholePixels(surroundings_.windows.layout().fromScreenSpace(frame));
    const std::array<std::uint32_t, 4> values = {
        static_cast<std::uint32_t>(onRoot_.x), static_cast<std::uint32_t>(onRoot_.y),
        static_cast<std::uint32_t>(onRoot_.width), static_cast<std::uint32_t>(onRoot_.height)};
    xcb_configure_window(connection_.get(), window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    surface_->clear();
    repaintEverything();
    setNeedsDisplay();
    connection_.flush();
}

void X11OverlayWindow::orderFrontRegardless() {
    if (stayOnTop_) {
        stayOnTop_.emplace(connection_, window_);
        return;
    }
    captureRedirection_ = surroundings_.captureRedirection.hold();
    captureBackdrop_ = surroundings_.captureBackdrop.holdForOverlay();
    xcb_map_window(connection_.get(), window_);
    stayOnTop_.emplace(connection_, window_);
    repaintEverything();
    setNeedsDisplay();
    connection_.flush();
}

void X11OverlayWindow::orderOut() {
    stayOnTop_.reset();
    // Before the window goes, so that whoever sees it gone reads no text either.
    xcb_delete_property(connection_.get(), window_, connection_.atom(Atom::lumetryText));
    xcb_unmap_window(connection_.get(), window_);
    captureRedirection_.reset();
    captureBackdrop_.reset();
    surface_->clear();
    shown_.clear();
    uncovered_.clear();
    viewChanged_ = true;
    connection_.flush();
}

void X11OverlayWindow::setNeedsDisplay() {
    viewChanged_ = true;
    scheduleRepaint();
}

void X11OverlayWindow::repaintEverything() {
    uncovered_ = {toRect({0, 0, onRoot_.width, onRoot_.height})};
    scheduleRepaint();
}

void X11OverlayWindow::scheduleRepaint() {
    if (!stayOnTop_ || repaintScheduled_) {
        return;
    }
    repaintScheduled_ = true;
    connection_.runLoop().async(lifetime_.guard([this] {
        repaintScheduled_ = false;
        repaint();
    }));
}

void X11OverlayWindow::repaint() {
    if (!stayOnTop_ || connection_.isLost()) {
        return;
    }
    std::vector<Rect> areas = std::exchange(uncovered_, {});
    const bool intact = areas.empty();
    const bool drawn = std::exchange(viewChanged_, false);
    const DisplayList before = drawn ? std::exchange(shown_, drawView()) : DisplayList{};
    if (drawn) {
        const auto changed = changedAreas(before, shown_);
        areas.insert(areas.end(), changed.begin(), changed.end());
    }
    surface_->paint({shown_, areas, onRoot_.size(), intact ? &before : nullptr},
                    surroundings_.rasterizer);
    if (drawn) {
        publishTexts();
    }
    connection_.flush();
}

DisplayList X11OverlayWindow::drawView() {
    RecordingCanvas pixels(surroundings_.rasterizer);
    const double scale = surroundings_.windows.layout().scale;
    if (view_ && scale == 1) {
        view_->draw(pixels, frame());
    } else if (view_) {
        ScaledCanvas points(pixels, scale);
        view_->draw(points, frame());
    }
    return pixels.take();
}

void X11OverlayWindow::publishTexts() {
    std::string lines;
    for (const DrawCommand& command : shown_) {
        if (const auto* const text = std::get_if<DrawText>(&command)) {
            lines += text->text;
            // An element's name may hold a line break; it is drawn in one line all the same.
            std::replace(lines.end() - static_cast<std::ptrdiff_t>(text->text.size()), lines.end(),
                         '\n', ' ');
            lines += '\n';
        }
    }
    setText(connection_, window_, connection_.atom(Atom::lumetryText),
            connection_.atom(Atom::utf8String), lines);
}

void X11OverlayWindow::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != XCB_EXPOSE) {
        return;
    }
    const auto& expose = eventAs<xcb_expose_event_t>(event);
    if (expose.window != window_ || surface_->hasPainted(event)) {
        return;
    }
    const IntRect rect = {expose.x, expose.y, expose.width, expose.height};
    uncovered_.push_back(toRect(flipped(rect, onRoot_.height)));
    scheduleRepaint();
}

} // namespace lumetry::x11
