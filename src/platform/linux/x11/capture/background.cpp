#include "platform/linux/x11/capture/background.h"

#include "platform/linux/x11/capture/wallpaper.h"

#include <xcb/composite.h>
#include <xcb/shape.h>

#include <cstdint>
#include <utility>

namespace lumetry::x11 {
namespace {

/// Whole repetitions of the small patterns that root windows have.
constexpr std::int16_t probeSide = 64;

} // namespace

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
