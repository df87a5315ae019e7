#pragma once

#include <string_view>

namespace lumetry::kwin {

/// What runs in KWin while somebody asks: reports windows and the pointer to the program's
/// connection of the session bus, which takes the place of "@SERVICE@". A window is one line of
/// fields that are separated by tabs; KWin 5 lists its windows by age, with their places in the
/// stack, KWin 6 from the bottom up. That a window of another process than "@PID@" has drawn anew
/// is told at once, and then not again before "@DAMAGE_PAUSE@" milliseconds have passed. Of KWin 6
/// it is not known whether it counts what a window's subsurfaces draw: there nothing follows from
/// its silence. Lumetry's overlay is left out, whichever process shows it: what lies below it is
/// measured from the command line as well.
inline constexpr std::string_view script = R"js(
"use strict";
var six = workspace.stackingOrder !== undefined;
function send(method, text) {
    callDBus("@SERVICE@", "/app/lumetry/KWin", "app.lumetry.KWin", method, text);
}
function place(rect) {
    return rect ? [rect.x, rect.y, rect.width, rect.height].join(" ") : "";
}
function kindOf(window) {
    if (window.desktopWindow) { return "desktop"; }
    if (window.dock) { return "dock"; }
    if (window.popupWindow || window.popupMenu || window.dropdownMenu || window.tooltip ||
        window.comboBox || window.notification || window.onScreenDisplay) { return "popup"; }
    return window.utility || window.toolbar ? "floating" : "normal";
}
function isOverlay(window) {
    return window.resourceClass == "lumetry" && !window.caption && !window.desktopFileName;
}
function shows(window) {
    if (isOverlay(window)) { return false; }
    var desktop = workspace.currentDesktop;
    var here = window.onAllDesktops ||
        (six ? window.desktops.length == 0 || window.desktops.indexOf(desktop) >= 0
             : window.desktop == desktop);
    return here && !window.minimized && !window.deleted && !window.hidden &&
        !window.hiddenByShowDesktop;
}
function tellsDamage(window) {
    return window.damaged !== undefined && window.damaged.connect !== undefined;
}
function plain(text) {
    return String(text === undefined || text === null ? "" : text).replace(/[\t\r\n]/g, " ");
}
function report() {
    var windows = six ? workspace.stackingOrder.slice() : workspace.clientList();
    if (!six) {
        windows.sort(function(a, b) { return a.stackingOrder - b.stackingOrder; });
    }
    var active = six ? workspace.activeWindow : workspace.activeClient;
    var lines = [];
    for (var i = windows.length - 1; i >= 0; --i) {
        var window = windows[i];
        if (shows(window)) {
            lines.push([plain(window.internalId), window.pid, kindOf(window),
                        window === active ? 1 : 0, window.opacity, place(window.frameGeometry),
                        place(window.clientGeometry), place(window.bufferGeometry),
                        window.skipTaskbar ? 1 : 0, !six && tellsDamage(window) ? 1 : 0,
                        plain(window.resourceName),
                        plain(window.resourceClass), plain(window.desktopFileName),
                        plain(window.caption)].join("\t"));
        }
    }
    send("windows", lines.join("\n"));
}
function follow(window) {
    var changes = ["frameGeometryChanged", "bufferGeometryChanged", "clientGeometryChanged",
                   "minimizedChanged", "hiddenChanged", "hiddenByShowDesktopChanged",
                   "opacityChanged", "captionChanged", "stackingOrderChanged", "desktopChanged",
                   "desktopsChanged", "windowShown", "windowHidden"];
    for (var i = 0; i < changes.length; ++i) {
        if (window[changes[i]] && window[changes[i]].connect) {
            window[changes[i]].connect(report);
        }
    }
    if (tellsDamage(window) && window.pid != @PID@) {
        var told = 0;
        window.damaged.connect(function() {
            var passed = Date.now() - told;
            if (passed < 0 || passed >= @DAMAGE_PAUSE@) {
                told = Date.now();
                send("damaged", plain(window.internalId));
            }
        });
    }
}
function arrived(window) { follow(window); report(); }
function pointer() {
    send("pointer", workspace.cursorPos.x + " " + workspace.cursorPos.y);
}
(six ? workspace.stackingOrder : workspace.clientList()).forEach(follow);
(six ? workspace.windowAdded : workspace.clientAdded).connect(arrived);
(six ? workspace.windowRemoved : workspace.clientRemoved).connect(report);
(six ? workspace.windowActivated : workspace.clientActivated).connect(report);
workspace.currentDesktopChanged.connect(report);
workspace.cursorPosChanged.connect(pointer);
pointer();
report();
)js";

} // namespace lumetry::kwin
