#pragma once

#include "base/geometry.h"
#include "platform/canvas.h"

#include <cstdint>
#include <memory>

namespace lumetry {

/// What a window shows (NSView).
class ContentView {
public:
    ContentView() = default;
    ContentView(const ContentView&) = delete;
    ContentView& operator=(const ContentView&) = delete;
    virtual ~ContentView() = default;

    /// Draws everything. The window calls it after it was marked as needing display.
    /// @param windowFrame the window's frame in screen space; the view fills it, with its own
    /// origin at the frame's lower-left corner
    virtual void draw(Canvas& canvas, const Rect& windowFrame) = 0;
};

/// How an overlay window is made (NSWindow). The defaults are an inspection overlay's.
struct OverlayWindowStyle {
    /// NSScreenSaverWindowLevel: above everything, menus included.
    static constexpr int screenSaverLevel = 1000;
    /// On all desktops (1), unmoved by them (16), and beside full-screen windows (256).
    static constexpr std::uint32_t everywhere = 0x111;

    int level = screenSaverLevel;
    std::uint32_t collectionBehavior = everywhere;
    bool borderless = true;
    bool opaque = false;
    bool ignoresMouseEvents = true;
    bool hasShadow = false;
    bool accessibilityElement = false;

    friend bool operator==(const OverlayWindowStyle&, const OverlayWindowStyle&) = default;
};

/// A window that other applications shine through.
class OverlayWindow {
public:
    OverlayWindow() = default;
    OverlayWindow(const OverlayWindow&) = delete;
    OverlayWindow& operator=(const OverlayWindow&) = delete;
    virtual ~OverlayWindow() = default;

    /// What the window shows; the view outlives it.
    virtual void setContentView(ContentView& view) = 0;
    /// Its frame in screen space.
    [[nodiscard]] virtual Rect frame() const = 0;
    virtual void setFrame(const Rect& frame) = 0;
    /// Its number in the window list (NSWindow.windowNumber).
    [[nodiscard]] virtual std::uint32_t windowNumber() const = 0;
    /// Shows it above all windows without making the program active.
    virtual void orderFrontRegardless() = 0;
    /// Hides it.
    virtual void orderOut() = 0;
    /// Has the content view drawn on a later turn of the main queue; several calls are one.
    virtual void setNeedsDisplay() = 0;
};

/// Makes overlay windows.
class OverlayWindows {
public:
    OverlayWindows() = default;
    OverlayWindows(const OverlayWindows&) = delete;
    OverlayWindows& operator=(const OverlayWindows&) = delete;
    virtual ~OverlayWindows() = default;

    /// A hidden window with that content rectangle (screen space).
    [[nodiscard]] virtual std::unique_ptr<OverlayWindow>
    makeWindow(const Rect& contentRect, const OverlayWindowStyle& style) = 0;
};

} // namespace lumetry
