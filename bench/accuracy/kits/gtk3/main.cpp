// A window of GTK 3 that says where its elements are and how they are styled.
//
//   lumetry_kit_gtk3 PLAN

#include "css.h"
#include "statement.h"

#include <gtk/gtk.h>

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace lumetry::accuracy;
using Json = nlohmann::json;

GtkWidget* window = nullptr;
Statement statement;
std::string css = "window { background: white; }";
/// What is to be stated once everything has its place.
std::vector<std::function<void()>> statements;

Json placeOf(GtkWidget* widget) {
    int x = 0;
    int y = 0;
    gtk_widget_translate_coordinates(widget, window, 0, 0, &x, &y);
    return {x, y, gtk_widget_get_allocated_width(widget), gtk_widget_get_allocated_height(widget)};
}

std::vector<GtkWidget*> childrenOf(GtkWidget* container) {
    std::vector<GtkWidget*> children;
    GList* const list = gtk_container_get_children(GTK_CONTAINER(container));
    for (const GList* node = list; node; node = node->next) {
        children.push_back(static_cast<GtkWidget*>(node->data));
    }
    g_list_free(list);
    return children;
}

Json placesOfShown(const std::vector<GtkWidget*>& widgets) {
    Json places = Json::array();
    for (GtkWidget* const widget : widgets) {
        if (gtk_widget_get_mapped(widget) != FALSE) {
            places.push_back(placeOf(widget));
        }
    }
    return places;
}

void addRule(const std::string& selector, const std::string& declarations) {
    css += "\n" + selector +
           " { box-shadow: none; text-shadow: none; min-width: 0; min-height: 0; " + declarations +
           " }";
}

std::string selectorOf(const Planned& element) {
    return "#" + element.at("id");
}

/// The frame is added when all is laid out.
Json& state(const Planned& element, GtkWidget* widget, std::initializer_list<const char*> kept) {
    Json& stated = statement.add(element.at("id"), element, kept);
    stated["frame"] = placeOf(widget);
    return stated;
}

GtkWidget* label(const Planned& element) {
    GtkWidget* const widget = gtk_label_new(element.at("text").c_str());
    addRule(selectorOf(element), fontOf(element));
    statements.emplace_back([=] {
        state(element, widget, {"family", "size", "weight", "color", "fill"});
    });
    return widget;
}

GtkWidget* button(const Planned& element) {
    GtkWidget* const widget = gtk_button_new_with_label(element.at("text").c_str());
    addRule(selectorOf(element), fontOf(element) + surfaceOf(element));
    statements.emplace_back([=] { state(element, widget, {"color", "fill", "radius"}); });
    return widget;
}

GtkWidget* styledField(const Planned& element, GtkWidget* widget) {
    gtk_widget_set_size_request(widget, number(element, "width"), -1);
    addRule(selectorOf(element), fontOf(element) + surfaceOf(element));
    statements.emplace_back([=] {
        state(element, widget, {"family", "size", "weight", "color", "fill", "radius"});
    });
    return widget;
}

GtkWidget* entry(const Planned& element) {
    GtkWidget* const widget = gtk_entry_new();
    gtk_entry_set_text(GTK_ENTRY(widget), element.at("text").c_str());
    return styledField(element, widget);
}

GtkWidget* spin(const Planned& element) {
    GtkWidget* const widget = gtk_spin_button_new_with_range(0, 100, 1);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(widget), 12);
    return styledField(element, widget);
}

GtkWidget* area(const Planned& element) {
    GtkWidget* const widget = gtk_text_view_new();
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(widget), GTK_WRAP_WORD);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)),
                             element.at("text").c_str(), -1);
    gtk_widget_set_size_request(widget, number(element, "width"), number(element, "height"));
    addRule(selectorOf(element) + ", " + selectorOf(element) + " text",
            fontOf(element) + "background: " + element.at("fill") + ";");
    statements.emplace_back([=] {
        state(element, widget, {"family", "size", "weight", "color", "fill"});
    });
    return widget;
}

GtkWidget* choice(const Planned& element, GtkWidget* widget) {
    statements.emplace_back([=] { state(element, widget, {})["fill"] = "#ffffff"; });
    return widget;
}

GtkWidget* check(const Planned& element) {
    return choice(element, gtk_check_button_new_with_label(element.at("text").c_str()));
}

GtkWidget* radio(const Planned& element) {
    return choice(element, gtk_radio_button_new_with_label(nullptr, element.at("text").c_str()));
}

void addChoices(GtkWidget* widget) {
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(widget), "Monthly");
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(widget), "Yearly");
    gtk_combo_box_set_active(GTK_COMBO_BOX(widget), 0);
}

GtkWidget* popup(const Planned& element) {
    GtkWidget* const widget = gtk_combo_box_text_new();
    addChoices(widget);
    statements.emplace_back([=] { state(element, widget, {}); });
    return widget;
}

GtkWidget* combo(const Planned& element) {
    GtkWidget* const widget = gtk_combo_box_text_new_with_entry();
    addChoices(widget);
    addRule(selectorOf(element) + " entry", fontOf(element));
    // What is there is its field.
    statements.emplace_back([=] {
        Json& stated = statement.add("entry-" + element.at("id"), element,
                                     {"family", "size", "weight", "color"});
        stated["frame"] = placeOf(gtk_bin_get_child(GTK_BIN(widget)));
    });
    return widget;
}

GtkWidget* menubar(const Planned& element) {
    GtkWidget* const bar = gtk_menu_bar_new();
    GtkWidget* const item = gtk_menu_item_new_with_label(element.at("text").c_str());
    GtkWidget* const menu = gtk_menu_new();
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), gtk_menu_item_new_with_label("Entry"));
    gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), menu);
    gtk_menu_shell_append(GTK_MENU_SHELL(bar), item);
    statements.emplace_back([=] { state(element, item, {}); });
    return bar;
}

constexpr int belowItems = 20; ///< room in which a list is hit and none of its items

GtkWidget* list(const Planned& element) {
    constexpr int itemHeight = 26;
    constexpr int rowHeight = 30; // with what the theme puts around
    GtkWidget* const widget = gtk_list_box_new();
    const int count = number(element, "items");
    for (int n = 0; n < count; ++n) {
        GtkWidget* const item = gtk_label_new(("Item " + std::to_string(n)).c_str());
        gtk_widget_set_size_request(item, 80, itemHeight);
        gtk_container_add(GTK_CONTAINER(widget), item);
    }
    const auto isShown = [](GtkListBoxRow* row, gpointer hidden) {
        return static_cast<gboolean>(gtk_list_box_row_get_index(row) != GPOINTER_TO_INT(hidden));
    };
    gtk_list_box_set_filter_func(GTK_LIST_BOX(widget), isShown,
                                 GINT_TO_POINTER(number(element, "hidden")), nullptr);
    gtk_widget_set_size_request(widget, 120, count * rowHeight + belowItems);
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {});
        stated["items"] = placesOfShown(childrenOf(widget));
        stated["point"] = pointAtEnd(stated["frame"]);
    });
    return widget;
}

GtkWidget* boxOf(const Planned& element, GtkOrientation orientation) {
    GtkWidget* const widget = gtk_box_new(orientation, number(element, "gap"));
    for (int n = 0; n < number(element, "items"); ++n) {
        GtkWidget* const item = gtk_label_new(("Item " + std::to_string(n)).c_str());
        gtk_widget_set_size_request(item, 64, 20);
        gtk_widget_set_no_show_all(item, static_cast<gboolean>(n == number(element, "hidden")));
        gtk_container_add(GTK_CONTAINER(widget), item);
    }
    return widget;
}

GtkWidget* styledBox(const Planned& element, GtkWidget* widget) {
    addRule(selectorOf(element), surfaceOf(element) + "color: " + element.at("color") + ";");
    statements.emplace_back([=] {
        state(element, widget, {"fill", "radius"})["items"] = placesOfShown(childrenOf(widget));
    });
    return widget;
}

GtkWidget* box(const Planned& element) {
    return styledBox(element, boxOf(element, GTK_ORIENTATION_VERTICAL));
}

GtkWidget* row(const Planned& element) {
    return styledBox(element, boxOf(element, GTK_ORIENTATION_HORIZONTAL));
}

GtkWidget* panel(const Planned& element) {
    GtkWidget* const widget = gtk_frame_new(nullptr);
    gtk_frame_set_shadow_type(GTK_FRAME(widget), GTK_SHADOW_NONE);
    gtk_container_add(GTK_CONTAINER(widget), boxOf(element, GTK_ORIENTATION_VERTICAL));
    return styledBox(element, widget);
}

Json cellPlace(GtkWidget* table, int row, int column) {
    GtkTreePath* const path = gtk_tree_path_new_from_indices(row, -1);
    GdkRectangle cell;
    gtk_tree_view_get_cell_area(GTK_TREE_VIEW(table), path,
                                gtk_tree_view_get_column(GTK_TREE_VIEW(table), column), &cell);
    gtk_tree_path_free(path);
    gtk_tree_view_convert_bin_window_to_widget_coords(GTK_TREE_VIEW(table), cell.x, cell.y, &cell.x,
                                                      &cell.y);
    const Json origin = placeOf(table);
    return {origin[0].get<int>() + cell.x, origin[1].get<int>() + cell.y, cell.width, cell.height};
}

void stateTable(const Planned& element, GtkWidget* widget) {
    const int columns = number(element, "columns");
    Json& stated = state(element, widget, {});
    for (int n = 0; n < number(element, "rows"); ++n) {
        Json place = cellPlace(widget, n, 0);
        const Json last = cellPlace(widget, n, columns - 1);
        place[2] = last[0].get<int>() + last[2].get<int>() - place[0].get<int>();
        stated["items"].push_back(place);
    }
    stated["point"] = pointAtEnd(stated["frame"]);
    // The text of a cell; its own place within the cell is not told.
    const Json cell = cellPlace(widget, 2, 0);
    statement.add("cell-1", element, {"family", "size", "weight", "color", "fill"})["point"] = {
        cell[0].get<int>() + 20, cell[1].get<int>() + cell[3].get<int>() / 2};
}

GtkWidget* table(const Planned& element) {
    GtkListStore* const store = gtk_list_store_new(1, G_TYPE_STRING);
    GtkWidget* const widget = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store));
    for (int n = 0; n < number(element, "columns"); ++n) {
        gtk_tree_view_insert_column_with_attributes(
            GTK_TREE_VIEW(widget), -1, ("Column " + std::to_string(n)).c_str(),
            gtk_cell_renderer_text_new(), "text", 0, nullptr);
    }
    for (int n = 0; n < number(element, "rows"); ++n) {
        gtk_list_store_insert_with_values(store, nullptr, -1, 0, "Cell text", -1);
    }
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(GTK_TREE_VIEW(widget)),
                                GTK_SELECTION_NONE);
    addRule(selectorOf(element), fontOf(element) + "background: " + element.at("fill") + ";");
    addRule(selectorOf(element) + " header button label", "font-size: 9pt;");
    gtk_widget_set_size_request(widget, -1, 205);
    statements.emplace_back([=] { stateTable(element, widget); });
    return widget;
}

GtkWidget* image(const Planned& element) {
    GdkRGBA color;
    gdk_rgba_parse(&color, element.at("fill").c_str());
    constexpr double largest = 255;
    const auto byte = [=](double channel) {
        return static_cast<guint32>(std::lround(channel * largest));
    };
    GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, number(element, "width"),
                                             number(element, "height"));
    gdk_pixbuf_fill(pixels, byte(color.red) << 24U | byte(color.green) << 16U |
                                byte(color.blue) << 8U | 0xFFU);
    GtkWidget* const widget = gtk_image_new_from_pixbuf(pixels);
    statements.emplace_back([=] { state(element, widget, {"fill"}); });
    return widget;
}

using Maker = GtkWidget* (*)(const Planned&);
const std::map<std::string, Maker> makers = {
    {"label", label}, {"button", button},   {"entry", entry}, {"spin", spin},
    {"area", area},   {"check", check},     {"radio", radio}, {"popup", popup},
    {"combo", combo}, {"menubar", menubar}, {"list", list},   {"box", box},
    {"row", row},     {"panel", panel},     {"table", table}, {"image", image}};

gboolean stateAll(gpointer /*nothing*/) {
    // Nothing is to look as if it had the keyboard.
    gtk_window_set_focus(GTK_WINDOW(window), nullptr);
    for (const auto& state : statements) {
        state();
    }
    statement.print(gtk_widget_get_scale_factor(window));
    return G_SOURCE_REMOVE;
}

void fill(GtkWidget* place, const std::vector<Planned>& plan) {
    for (const Planned& element : plan) {
        const auto maker = makers.find(element.at("what"));
        if (maker != makers.end()) {
            GtkWidget* const widget = maker->second(element);
            gtk_widget_set_name(widget, element.at("id").c_str());
            gtk_fixed_put(GTK_FIXED(place), widget, number(element, "x"), number(element, "y"));
        }
    }
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, css.c_str(), -1, nullptr);
    gtk_style_context_add_provider_for_screen(
        gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider), GTK_STYLE_PROVIDER_PRIORITY_USER);
}

} // namespace

int main(int argc, char** argv) {
    constexpr int patienceMs = 800; // for the window manager
    gtk_init(&argc, &argv);
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), "Accuracy");
    GtkWidget* const place = gtk_fixed_new();
    gtk_widget_set_size_request(place, 1260, 900);
    gtk_container_add(GTK_CONTAINER(window), place);
    fill(place, readPlan(argv[1]));
    gtk_widget_show_all(window);
    g_timeout_add(patienceMs, stateAll, nullptr);
    gtk_main();
}
