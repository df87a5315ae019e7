#include "inspection.h"

#include "rig/chromium.h"
#include "rig/desktop_windows.h"

namespace lumetry::desktop {
namespace {

constexpr Rect heading = {120, 110, 560, 58};
constexpr Rect paragraph = {120, 184, 560, 56};
constexpr Rect button = {120, 272, 190, 48};
/// Below its last item, where the list itself is.
constexpr Rect listGround = {140, 396, 60, 12};

constexpr const char* page = R"(<!doctype html><meta charset="utf-8"><title>Plans</title>
<style>
  body { margin: 0; background: #F6F4F0; font: 17px/28px Inter, sans-serif; color: #33302B; }
  h1, p, button, ul { position: absolute; left: 120px; margin: 0; box-sizing: border-box; }
  h1 { top: 110px; width: 560px; height: 58px; font: 700 44px/58px Inter; color: #1B1A17; }
  p { top: 184px; width: 560px; height: 56px; }
  button { top: 272px; width: 190px; height: 48px; border: 0; border-radius: 12px;
           background: #0F6B5C; color: white; font: 600 17px Inter; }
  ul { top: 384px; width: 660px; height: 184px; padding: 24px 0 24px 24px; list-style: none;
       background: white; border-radius: 16px; display: flex; gap: 18px; }
  li { width: 192px; height: 136px; padding: 18px; box-sizing: border-box; border-radius: 10px;
       background: #EAF3F0; font-weight: 600; }
</style>
<h1>Pick a plan that fits</h1>
<p>Every plan comes with all features. Change or leave whenever you like; what you made stays
yours.</p>
<button>Start for free</button>
<ul><li>Starter</li><li>Studio</li><li>Company</li></ul>)";

DesktopOptions pageDesktop(int scale) {
    DesktopOptions options;
    options.width = 1180 * scale;
    options.height = 760 * scale;
    options.scale = scale;
    return options;
}

} // namespace

void tourPage(const std::string& lumetry, Album& album) {
    PrivateDesktop desktop(pageDesktop(1));
    const auto browser = startChromiumWith(desktop, page);
    static_cast<void>(waitForWindow(desktop.server(), hasClass("Chromium")));
    Inspection inspection(desktop, lumetry, album);
    inspection.hover(button, "page-button", "Button · Start for free");
    inspection.hover(heading, "page-heading");
    inspection.hover(paragraph, "page-paragraph");
    inspection.hover(listGround, "page-list");
}

void tourDensePage(const std::string& lumetry, Album& album) {
    constexpr int scale = 2;
    PrivateDesktop desktop(pageDesktop(scale));
    const auto browser = startChromiumWith(desktop, page);
    static_cast<void>(waitForWindow(desktop.server(), hasClass("Chromium")));
    Inspection inspection(desktop, lumetry, album);
    const Rect pixels = {button.x * scale, button.y * scale, button.width * scale,
                         button.height * scale};
    inspection.hover(pixels, "page-button-200", "Button · Start for free");
}

} // namespace lumetry::desktop
