#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace lumetry::x11 {

/// The names that this program interns, in the order of atomNames.
enum class Atom : std::size_t {
    esetrootPmapId,
    gtkApplicationId,
    gtkFrameExtents,
    kdeDesktopFile,
    lumetryText,
    netActiveWindow,
    netCurrentDesktop,
    netFrameExtents,
    netSupportingWmCheck,
    netSystemTrayColors,
    netWmBypassCompositor,
    netWmDesktop,
    netWmName,
    netWmPid,
    netWmState,
    netWmStateHidden,
    netWmStateSkipTaskbar,
    netWmStrut,
    netWmStrutPartial,
    netWmWindowOpacity,
    netWmWindowType,
    netWmWindowTypeCombo,
    netWmWindowTypeDesktop,
    netWmWindowTypeDialog,
    netWmWindowTypeDnd,
    netWmWindowTypeDock,
    netWmWindowTypeDropdownMenu,
    netWmWindowTypeMenu,
    netWmWindowTypeNormal,
    netWmWindowTypeNotification,
    netWmWindowTypePopupMenu,
    netWmWindowTypeToolbar,
    netWmWindowTypeTooltip,
    netWmWindowTypeUtility,
    netWorkarea,
    comptonShadow,
    utf8String,
    wmState,
    xrootPmapId,
    xsettingsSettings,
    count,
};

inline constexpr std::size_t atomCount = static_cast<std::size_t>(Atom::count);

inline constexpr std::array<std::string_view, atomCount> atomNames = {
    "ESETROOT_PMAP_ID",
    "_GTK_APPLICATION_ID",
    "_GTK_FRAME_EXTENTS",
    "_KDE_NET_WM_DESKTOP_FILE",
    "_LUMETRY_TEXT",
    "_NET_ACTIVE_WINDOW",
    "_NET_CURRENT_DESKTOP",
    "_NET_FRAME_EXTENTS",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_SYSTEM_TRAY_COLORS",
    "_NET_WM_BYPASS_COMPOSITOR",
    "_NET_WM_DESKTOP",
    "_NET_WM_NAME",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STRUT",
    "_NET_WM_STRUT_PARTIAL",
    "_NET_WM_WINDOW_OPACITY",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_COMBO",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DIALOG",
    "_NET_WM_WINDOW_TYPE_DND",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
    "_NET_WM_WINDOW_TYPE_MENU",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_POPUP_MENU",
    "_NET_WM_WINDOW_TYPE_TOOLBAR",
    "_NET_WM_WINDOW_TYPE_TOOLTIP",
    "_NET_WM_WINDOW_TYPE_UTILITY",
    "_NET_WORKAREA",
    "_COMPTON_SHADOW",
    "UTF8_STRING",
    "WM_STATE",
    "_XROOTPMAP_ID",
    "_XSETTINGS_SETTINGS",
};

static_assert(!atomNames.back().empty(), "every atom has its name");

/// The server's numbers of names, in one wait for it; none for a name where it does not answer.
[[nodiscard]] std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                                  std::span<const std::string_view> names);
[[nodiscard]] xcb_atom_t internAtom(xcb_connection_t* connection, std::string_view name);

} // namespace lumetry::x11
