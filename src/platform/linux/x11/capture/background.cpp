#include "platform/linux/x11/capture/background.h"

#include "platform/linux/x11/capture/composer.h"
#include "platform/linux/x11/capture/grid.h"
#include "platform/linux/x11/connection/property.h"

#include <xcb/composite.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lumetry::x11 {
namespace {

/// How long a compositing manager may take to draw the screen without a window that has gone,
/// fading it out included.
constexpr double fadeSeconds = 1;

/// How long what was taken for captures without an overlay counts as what the screen shows.
constexpr double freshSeconds = 1;

xcb_rectangle_t rectangleOf(const Rect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

/// A region of the server, destroyed at the end.
class Region {
public:
    Region(Connection& connection, std::span<const Rect> rects)
        : connection_(connection), id_(xcb_generate_id(connection.get())) {
        std::vector<xcb_rectangle_t> rectangles;
        rectangles.reserve(rects.size());
        std::ranges::transform(rects, std::back_inserter(rectangles), rectangleOf);
        xcb_xfixes_create_region(connection.get(), id_,
                                 static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    }
    Region(const Region&) = delete;
    Region& operator=(const Region&) = delete;
    ~Region() { xcb_xfixes_destroy_region(connection_.get(), id_); }

    [[nodiscard]] xcb_xfixes_region_t id() const { return id_; }

private:
    Connection& connection_;
    xcb_xfixes_region_t id_;
};

xcb_render_color_t renderColor(std::uint32_t pixel) {
    const auto component = [pixel](unsigned shift) {
        return static_cast<std::uint16_t>(((pixel >> shift) & 0xFFU) * 0x101U);
    };
    return {component(16), component(8), component(0), component(24)};
}

/// Whole repetitions of the small patterns that root windows have.
constexpr std::int16_t probeSide = 64;

} // namespace

std::optional<Wallpaper> findWallpaper(Connection& connection, CaptureFormats& formats) {
    std::array<PropertyRequest, wallpaperAtoms.size()> requests;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        requests[i] = requestProperty(connection, connection.root(), wallpaperAtoms[i], 1);
    }
    std::optional<Wallpaper> wallpaper;
    for (const PropertyRequest request : requests) {
        const auto pixmap = firstNumber(connection, request);
        if (wallpaper || pixmap.value_or(0) == 0) {
            continue;
        }
        const auto geometry =
            connection.reply(xcb_get_geometry_reply, xcb_get_geometry(connection.get(), *pixmap));
        const auto format = geometry ? formats.ofPixmap(geometry->depth) : std::nullopt;
        if (format) {
            wallpaper = Wallpaper{*pixmap, *format};
        }
    }
    return wallpaper;
}

CaptureBackdrop::CaptureBackdrop(Connection& connection, X11Windows& windows,
                                 CompositingManager& compositingManager, CaptureFormats& formats)
    : connection_(connection), windows_(windows), compositingManager_(compositingManager),
      formats_(formats), pixmap_(xcb_generate_id(connection.get())),
      picture_(xcb_generate_id(connection.get())),
      compositing_(compositingManager.onChange([this] { free(); })) {}

CaptureBackdrop::~CaptureBackdrop() {
    free();
}

Token CaptureBackdrop::holdForOverlay() {
    if (overlays_ == 0 && isScreenClear()) {
        take();
    }
    ++overlays_;
    return Token(lifetime_.guard([this] { overlayGone(); }));
}

void CaptureBackdrop::overlayGone() {
    if (--overlays_ > 0) {
        return;
    }
    clearAt_ = connection_.runLoop().now() + fadeSeconds;
    connection_.runLoop().after(fadeSeconds, lifetime_.guard([this] {
        if (isScreenClear()) {
            rest();
        }
    }));
}

bool CaptureBackdrop::isScreenClear() const {
    return overlays_ == 0 && (!clearAt_ || connection_.runLoop().now() >= *clearAt_);
}

std::optional<xcb_render_picture_t> CaptureBackdrop::picture() {
    if (isScreenClear() && (!takenAt_ || connection_.runLoop().now() > *takenAt_ + freshSeconds)) {
        take();
    }
    return isTaken_ ? std::optional(picture_) : std::nullopt;
}

void CaptureBackdrop::rest() {
    if (overlays_ == 0) {
        free();
        connection_.flush();
    }
}

void CaptureBackdrop::take() {
    free();
    const bool isShown = compositingManager_.isRunning() && !findWallpaper(connection_, formats_);
    if (isShown && copyScreen() && !fillTheRest()) {
        free();
    }
    takenAt_ = connection_.runLoop().now();
}

/// @return whether there is a picture now
bool CaptureBackdrop::copyScreen() {
    const auto rootFormat = formats_.ofVisual(connection_.screen().root_visual);
    const auto translucent = formats_.translucent();
    if (!rootFormat || !translucent) {
        return false;
    }
    auto* const c = connection_.get();
    const xcb_rectangle_t all = rectangleOf(windows_.layout().root);
    xcb_create_pixmap(c, translucentDepth, pixmap_, connection_.root(), all.width, all.height);
    xcb_render_create_picture(c, picture_, pixmap_, *translucent, 0, nullptr);
    xcb_render_fill_rectangles(c, XCB_RENDER_PICT_OP_SRC, picture_, {}, 1, &all);

    const xcb_render_picture_t screen = xcb_generate_id(c);
    const std::uint32_t withWindows = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_render_create_picture(c, screen, connection_.root(), rootFormat->id,
                              XCB_RENDER_CP_SUBWINDOW_MODE, &withWindows);
    clipToBareScreen();
    xcb_render_composite(c, XCB_RENDER_PICT_OP_SRC, screen, XCB_NONE, picture_, 0, 0, 0, 0, 0, 0,
                         all.width, all.height);
    xcb_xfixes_set_picture_clip_region(c, picture_, XCB_XFIXES_REGION_NONE, 0, 0);
    xcb_render_free_picture(c, screen);
    isTaken_ = true;
    return true;
}

void CaptureBackdrop::clipToBareScreen() {
    const Region bare(connection_, windows_.layout().screens);
    const Region occupied(connection_, windows_.occupied());
    auto* const c = connection_.get();
    xcb_xfixes_subtract_region(c, bare.id(), occupied.id(), bare.id());
    xcb_xfixes_set_picture_clip_region(c, picture_, bare.id(), 0, 0);
}

/// @return whether anything is known
bool CaptureBackdrop::fillTheRest() {
    constexpr IntSize samples = {64, 64};
    const ScreenLayout& layout = windows_.layout();
    const auto grid = CaptureGrid::of(layout.root, samples, Interpolation::none);
    if (!grid) {
        return false;
    }
    CaptureTarget target(connection_, *formats_.translucent());
    target.reserve(samples);
    CaptureComposer composer(connection_);
    const CaptureComposer::Canvas canvas = {
        *grid, {0, 0, samples.width, samples.height}, target.picture()};
    composer.clear(canvas);
    composer.drawTile(canvas, picture_, layout.screens);

    std::unordered_map<std::uint32_t, std::size_t> counts;
    std::size_t known = 0;
    std::pair<std::uint32_t, std::size_t> most;
    const bool isRead = target.read(samples, [&](int, std::span<const std::uint32_t> words) {
        for (const std::uint32_t word : words) {
            if (word != missingPixel) {
                ++known;
                const std::size_t count = ++counts[word];
                most = count > most.second ? std::pair(word, count) : most;
            }
        }
    });
    if (!isRead || known == 0) {
        return false;
    }
    if (2 * most.second > known) {
        const xcb_rectangle_t all = rectangleOf(layout.root);
        const std::uint32_t pixel =
            hasOtherByteOrder(connection_) ? swapped(most.first) : most.first;
        xcb_render_fill_rectangles(connection_.get(), XCB_RENDER_PICT_OP_OVER_REVERSE, picture_,
                                   renderColor(pixel), 1, &all);
    }
    return true;
}

void CaptureBackdrop::free() {
    takenAt_.reset();
    if (std::exchange(isTaken_, false)) {
        xcb_render_free_picture(connection_.get(), picture_);
        xcb_free_pixmap(connection_.get(), pixmap_);
    }
}

CaptureBackground::CaptureBackground(Connection& connection, CaptureFormats& formats,
                                     CaptureBackdrop& backdrop)
    : connection_(connection), formats_(formats), backdrop_(backdrop),
      tile_(xcb_generate_id(connection.get())),
      rootEvents_(connection.selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE)),
      events_(connection.onEvent([this](const xcb_generic_event_t& event) {
          if (typeOf(event) != XCB_PROPERTY_NOTIFY) {
              return;
          }
          const auto& change = eventAs<xcb_property_notify_event_t>(event);
          for (const Atom atom : wallpaperAtoms) {
              isDirty_ = isDirty_ || (change.window == connection_.root() &&
                                      change.atom == connection_.atom(atom));
          }
      })) {}

CaptureBackground::~CaptureBackground() {
    freeTile();
    destroyProbe();
    backdrop_.rest();
}

std::optional<xcb_render_picture_t> CaptureBackground::picture(bool isComposited) {
    if (std::exchange(wasComposited_, isComposited) != isComposited || isDirty_) {
        isDirty_ = false;
        freeTile();
        destroyProbe();
        if (const auto wallpaper = findWallpaper(connection_, formats_)) {
            makeTile(wallpaper->pixmap, wallpaper->format);
        } else if (!isComposited) {
            takeProbe();
        }
    }
    if (isComposited && !hasTile_) {
        return backdrop_.picture();
    }
    if (probe_ != XCB_WINDOW_NONE) {
        // Nothing is said when the root's background changes.
        xcb_clear_area(connection_.get(), 0, probe_, 0, 0, 0, 0);
    }
    return hasTile_ ? std::optional(tile_) : std::nullopt;
}

void CaptureBackground::takeProbe() {
    const auto format = formats_.ofVisual(connection_.screen().root_visual);
    if (!format) {
        return;
    }
    makeProbe();
    auto* const c = connection_.get();
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_composite_name_window_pixmap(c, probe_, pixmap);
    makeTile(pixmap, format->id);
    xcb_free_pixmap(c, pixmap);
}

/// A window beyond the root's upper left corner, which nobody sees, that the server paints with the
/// root's background: there is no other way to ask for it. It would not paint one that a
/// compositing manager has taken over.
void CaptureBackground::makeProbe() {
    auto* const c = connection_.get();
    probe_ = xcb_generate_id(c);
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    values.override_redirect = 1;
    xcb_create_window_aux(c, XCB_COPY_FROM_PARENT, probe_, connection_.root(), -probeSide,
                          -probeSide, probeSide, probeSide, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
                          &values);
    xcb_shape_rectangles(c, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, 0, probe_, 0, 0, 0, nullptr);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(c, probe_, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(c, probe_);
}

void CaptureBackground::destroyProbe() {
    if (probe_ != XCB_WINDOW_NONE) {
        xcb_destroy_window(connection_.get(), probe_);
        probe_ = XCB_WINDOW_NONE;
    }
}

void CaptureBackground::makeTile(xcb_pixmap_t pixmap, xcb_render_pictformat_t format) {
    const std::uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
    xcb_render_create_picture(connection_.get(), tile_, pixmap, format, XCB_RENDER_CP_REPEAT,
                              &repeat);
    hasTile_ = true;
}

void CaptureBackground::freeTile() {
    if (hasTile_) {
        xcb_render_free_picture(connection_.get(), tile_);
        hasTile_ = false;
    }
}

} // namespace lumetry::x11
