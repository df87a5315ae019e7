#include "platform/linux/atspi/tree/roles.h"

#include <atspi/atspi-constants.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace lumetry::atspi {
namespace {

struct RoleLine {
    AtspiRole role;
    std::string_view axRole;
};

/// In the order of AT-SPI's numbers. What has no counterpart of its own is a group.
constexpr std::array roleTable = std::to_array<RoleLine>({
    {ATSPI_ROLE_INVALID, "AXUnknown"},
    {ATSPI_ROLE_ACCELERATOR_LABEL, "AXStaticText"},
    {ATSPI_ROLE_ALERT, "AXGroup"},
    {ATSPI_ROLE_ANIMATION, "AXImage"},
    {ATSPI_ROLE_ARROW, "AXImage"},
    {ATSPI_ROLE_CALENDAR, "AXGrid"},
    {ATSPI_ROLE_CANVAS, "AXImage"},
    {ATSPI_ROLE_CHECK_BOX, "AXCheckBox"},
    {ATSPI_ROLE_CHECK_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_COLOR_CHOOSER, "AXColorWell"},
    {ATSPI_ROLE_COLUMN_HEADER, "AXCell"},
    {ATSPI_ROLE_COMBO_BOX, "AXComboBox"},
    {ATSPI_ROLE_DATE_EDITOR, "AXTextField"},
    {ATSPI_ROLE_DESKTOP_ICON, "AXImage"},
    {ATSPI_ROLE_DESKTOP_FRAME, "AXWindow"},
    {ATSPI_ROLE_DIAL, "AXSlider"},
    {ATSPI_ROLE_DIALOG, "AXWindow"},
    {ATSPI_ROLE_DIRECTORY_PANE, "AXBrowser"},
    {ATSPI_ROLE_DRAWING_AREA, "AXImage"},
    {ATSPI_ROLE_FILE_CHOOSER, "AXWindow"},
    {ATSPI_ROLE_FILLER, "AXGroup"},
    {ATSPI_ROLE_FOCUS_TRAVERSABLE, "AXGroup"},
    {ATSPI_ROLE_FONT_CHOOSER, "AXGroup"},
    {ATSPI_ROLE_FRAME, "AXWindow"},
    {ATSPI_ROLE_GLASS_PANE, "AXGroup"},
    {ATSPI_ROLE_HTML_CONTAINER, "AXWebArea"},
    {ATSPI_ROLE_ICON, "AXImage"},
    {ATSPI_ROLE_IMAGE, "AXImage"},
    {ATSPI_ROLE_INTERNAL_FRAME, "AXGroup"},
    {ATSPI_ROLE_LABEL, "AXStaticText"},
    {ATSPI_ROLE_LAYERED_PANE, "AXGroup"},
    {ATSPI_ROLE_LIST, "AXList"},
    {ATSPI_ROLE_LIST_ITEM, "AXRow"},
    {ATSPI_ROLE_MENU, "AXMenu"},
    {ATSPI_ROLE_MENU_BAR, "AXMenuBar"},
    {ATSPI_ROLE_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_OPTION_PANE, "AXGroup"},
    {ATSPI_ROLE_PAGE_TAB, "AXRadioButton"},
    {ATSPI_ROLE_PAGE_TAB_LIST, "AXTabGroup"},
    {ATSPI_ROLE_PANEL, "AXGroup"},
    {ATSPI_ROLE_PASSWORD_TEXT, "AXTextField"},
    {ATSPI_ROLE_POPUP_MENU, "AXMenu"},
    {ATSPI_ROLE_PROGRESS_BAR, "AXProgressIndicator"},
    {ATSPI_ROLE_PUSH_BUTTON, "AXButton"},
    {ATSPI_ROLE_RADIO_BUTTON, "AXRadioButton"},
    {ATSPI_ROLE_RADIO_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_ROOT_PANE, "AXGroup"},
    {ATSPI_ROLE_ROW_HEADER, "AXCell"},
    {ATSPI_ROLE_SCROLL_BAR, "AXScrollBar"},
    {ATSPI_ROLE_SCROLL_PANE, "AXScrollArea"},
    {ATSPI_ROLE_SEPARATOR, "AXSplitter"},
    {ATSPI_ROLE_SLIDER, "AXSlider"},
    {ATSPI_ROLE_SPIN_BUTTON, "AXIncrementor"},
    {ATSPI_ROLE_SPLIT_PANE, "AXSplitGroup"},
    {ATSPI_ROLE_STATUS_BAR, "AXGroup"},
    {ATSPI_ROLE_TABLE, "AXTable"},
    {ATSPI_ROLE_TABLE_CELL, "AXCell"},
    {ATSPI_ROLE_TABLE_COLUMN_HEADER, "AXCell"},
    {ATSPI_ROLE_TABLE_ROW_HEADER, "AXCell"},
    {ATSPI_ROLE_TEAROFF_MENU_ITEM, "AXMenuItem"},
    {ATSPI_ROLE_TERMINAL, "AXTextArea"},
    {ATSPI_ROLE_TEXT, "AXTextField"},
    {ATSPI_ROLE_TOGGLE_BUTTON, "AXToggle"},
    {ATSPI_ROLE_TOOL_BAR, "AXToolbar"},
    {ATSPI_ROLE_TOOL_TIP, "AXHelpTag"},
    {ATSPI_ROLE_TREE, "AXOutline"},
    {ATSPI_ROLE_TREE_TABLE, "AXOutline"},
    {ATSPI_ROLE_UNKNOWN, "AXUnknown"},
    {ATSPI_ROLE_VIEWPORT, "AXGroup"},
    {ATSPI_ROLE_WINDOW, "AXWindow"},
    {ATSPI_ROLE_EXTENDED, "AXUnknown"},
    {ATSPI_ROLE_HEADER, "AXGroup"},
    {ATSPI_ROLE_FOOTER, "AXGroup"},
    {ATSPI_ROLE_PARAGRAPH, "AXGroup"},
    {ATSPI_ROLE_RULER, "AXRuler"},
    {ATSPI_ROLE_APPLICATION, "AXApplication"},
    {ATSPI_ROLE_AUTOCOMPLETE, "AXComboBox"},
    {ATSPI_ROLE_EDITBAR, "AXTextField"},
    {ATSPI_ROLE_EMBEDDED, "AXGroup"},
    {ATSPI_ROLE_ENTRY, "AXTextField"},
    {ATSPI_ROLE_CHART, "AXImage"},
    {ATSPI_ROLE_CAPTION, "AXGroup"},
    {ATSPI_ROLE_DOCUMENT_FRAME, "AXWebArea"},
    {ATSPI_ROLE_HEADING, "AXHeading"},
    {ATSPI_ROLE_PAGE, "AXGroup"},
    {ATSPI_ROLE_SECTION, "AXGroup"},
    {ATSPI_ROLE_REDUNDANT_OBJECT, "AXGroup"},
    {ATSPI_ROLE_FORM, "AXGroup"},
    {ATSPI_ROLE_LINK, "AXLink"},
    {ATSPI_ROLE_INPUT_METHOD_WINDOW, "AXWindow"},
    {ATSPI_ROLE_TABLE_ROW, "AXRow"},
    {ATSPI_ROLE_TREE_ITEM, "AXRow"},
    {ATSPI_ROLE_DOCUMENT_SPREADSHEET, "AXWebArea"},
    {ATSPI_ROLE_DOCUMENT_PRESENTATION, "AXWebArea"},
    {ATSPI_ROLE_DOCUMENT_TEXT, "AXWebArea"},
    {ATSPI_ROLE_DOCUMENT_WEB, "AXWebArea"},
    {ATSPI_ROLE_DOCUMENT_EMAIL, "AXWebArea"},
    {ATSPI_ROLE_COMMENT, "AXGroup"},
    {ATSPI_ROLE_LIST_BOX, "AXList"},
    {ATSPI_ROLE_GROUPING, "AXGroup"},
    {ATSPI_ROLE_IMAGE_MAP, "AXImage"},
    {ATSPI_ROLE_NOTIFICATION, "AXGroup"},
    {ATSPI_ROLE_INFO_BAR, "AXGroup"},
    {ATSPI_ROLE_LEVEL_BAR, "AXValueIndicator"},
    {ATSPI_ROLE_TITLE_BAR, "AXGroup"},
    {ATSPI_ROLE_BLOCK_QUOTE, "AXGroup"},
    {ATSPI_ROLE_AUDIO, "AXGroup"},
    {ATSPI_ROLE_VIDEO, "AXVideo"},
    {ATSPI_ROLE_DEFINITION, "AXGroup"},
    {ATSPI_ROLE_ARTICLE, "AXGroup"},
    {ATSPI_ROLE_LANDMARK, "AXGroup"},
    {ATSPI_ROLE_LOG, "AXGroup"},
    {ATSPI_ROLE_MARQUEE, "AXGroup"},
    {ATSPI_ROLE_MATH, "AXGroup"},
    {ATSPI_ROLE_RATING, "AXValueIndicator"},
    {ATSPI_ROLE_TIMER, "AXGroup"},
    {ATSPI_ROLE_STATIC, "AXStaticText"},
    {ATSPI_ROLE_MATH_FRACTION, "AXGroup"},
    {ATSPI_ROLE_MATH_ROOT, "AXGroup"},
    {ATSPI_ROLE_SUBSCRIPT, "AXGroup"},
    {ATSPI_ROLE_SUPERSCRIPT, "AXGroup"},
    {ATSPI_ROLE_DESCRIPTION_LIST, "AXList"},
    {ATSPI_ROLE_DESCRIPTION_TERM, "AXGroup"},
    {ATSPI_ROLE_DESCRIPTION_VALUE, "AXGroup"},
    {ATSPI_ROLE_FOOTNOTE, "AXGroup"},
    {ATSPI_ROLE_CONTENT_DELETION, "AXGroup"},
    {ATSPI_ROLE_CONTENT_INSERTION, "AXGroup"},
    {ATSPI_ROLE_MARK, "AXGroup"},
    {ATSPI_ROLE_SUGGESTION, "AXGroup"},
    {ATSPI_ROLE_PUSH_BUTTON_MENU, "AXMenuButton"},
});

/// Of AT-SPI 2.46; later ones have more at the end.
constexpr std::size_t roleCount = ATSPI_ROLE_PUSH_BUTTON_MENU + 1;

constexpr bool isInOrder() {
    for (std::size_t place = 0; place < roleTable.size(); ++place) {
        if (static_cast<std::size_t>(roleTable[place].role) != place) {
            return false;
        }
    }
    return roleTable.size() == roleCount;
}
static_assert(isInOrder(), "a role is missing or stands in the wrong place");

/// Came to AT-SPI later.
constexpr std::int64_t roleSwitch = 130;

constexpr std::string_view windowRole = "AXWindow";

/// What a menu or an entry of one is by the role of what it is in.
std::string_view roleInside(std::int64_t role, std::optional<std::int64_t> parent) {
    if (parent == ATSPI_ROLE_MENU_BAR) {
        return "AXMenuBarItem";
    }
    constexpr std::array menus = {ATSPI_ROLE_MENU, ATSPI_ROLE_POPUP_MENU};
    return std::ranges::find(menus, parent) != menus.end() ? "AXMenuItem" : axRole(role);
}

/// Whether one of a combo box's children is to be typed in; the only one is what drops down.
bool holdsEntry(ReplyCache& cache, const ObjectReference& comboBox, Deadline deadline) {
    constexpr std::size_t mostChildren = 8;
    const auto inside = cache.get<Question::children>(comboBox);
    if (!inside || inside->size() < 2 || inside->size() > mostChildren) {
        return false;
    }
    std::vector<Query> queries;
    for (const ObjectReference& child : *inside) {
        queries.push_back({child, Question::role});
    }
    cache.ask(queries, deadline);
    return std::ranges::any_of(*inside, [&](const ObjectReference& child) {
        constexpr std::array entries = {ATSPI_ROLE_TEXT, ATSPI_ROLE_ENTRY};
        return std::ranges::find(entries, cache.get<Question::role>(child)) != entries.end();
    });
}

} // namespace

std::string_view axRole(std::int64_t role) {
    if (role == roleSwitch) {
        return "AXSwitch";
    }
    return role >= 0 && role < static_cast<std::int64_t>(roleTable.size())
               ? roleTable[static_cast<std::size_t>(role)].axRole
               : "AXUnknown";
}

std::vector<Question> questionsForRole(std::int64_t role, const Habits& habits) {
    switch (role) {
    case ATSPI_ROLE_MENU:
    case ATSPI_ROLE_MENU_ITEM:
        return dependsOnParentsRole(role, habits) ? std::vector{Question::parent}
                                                  : std::vector<Question>();
    case ATSPI_ROLE_TEXT:
    case ATSPI_ROLE_ENTRY:
        return {Question::states};
    case ATSPI_ROLE_SPIN_BUTTON:
        return habits.statesTellEditable ? std::vector{Question::states} : std::vector<Question>();
    case ATSPI_ROLE_COMBO_BOX:
        return {habits.statesTellEditable ? Question::states : Question::children};
    default:
        return axRole(role) == windowRole ? std::vector{Question::parent} : std::vector<Question>();
    }
}

bool dependsOnParentsRole(std::int64_t role, const Habits& habits) {
    return role == ATSPI_ROLE_MENU || (role == ATSPI_ROLE_MENU_ITEM && !habits.barEntriesAreMenus);
}

std::optional<std::string_view> axRoleOf(ReplyCache& cache, const Habits& habits,
                                         const ObjectReference& object, bool isWindow,
                                         Deadline deadline) {
    const auto role = cache.ask<Question::role>(object, deadline);
    if (!role) {
        return std::nullopt;
    }
    cache.ask(object, questionsForRole(*role, habits), deadline);
    const auto has = [&](AtspiStateType state) {
        return hasState(cache.get<Question::states>(object).value_or(0), state);
    };
    const auto implementsEditableText = [&] {
        return cache.ask<Question::interfaces>(object, deadline)
            .value_or(Interfaces())
            .contains(Interface::editableText);
    };
    switch (*role) {
    case ATSPI_ROLE_MENU:
    case ATSPI_ROLE_MENU_ITEM: {
        const auto parent = dependsOnParentsRole(*role, habits)
                                ? cache.get<Question::parent>(object)
                                : std::nullopt;
        return parent ? roleInside(*role, cache.ask<Question::role>(*parent, deadline))
                      : axRole(*role);
    }
    case ATSPI_ROLE_TEXT:
    case ATSPI_ROLE_ENTRY:
        return has(ATSPI_STATE_MULTI_LINE) ? "AXTextArea" : axRole(*role);
    case ATSPI_ROLE_SPIN_BUTTON:
        return (habits.statesTellEditable ? has(ATSPI_STATE_EDITABLE) : implementsEditableText())
                   ? "AXTextField"
                   : axRole(*role);
    case ATSPI_ROLE_COMBO_BOX:
        return (habits.statesTellEditable ? has(ATSPI_STATE_EDITABLE)
                                          : holdsEntry(cache, object, deadline))
                   ? axRole(*role)
                   : "AXPopUpButton";
    default:
        break;
    }
    if (axRole(*role) == windowRole && !isWindow) {
        const auto parent = cache.get<Question::parent>(object);
        return parent && parent->path != ATSPI_DBUS_PATH_ROOT ? "AXGroup" : windowRole;
    }
    return axRole(*role);
}

} // namespace lumetry::atspi
