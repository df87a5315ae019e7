// A window of GTK 4 that says where its elements are and how they are styled. Up to version 4.8 the
// toolkit tells places of content boxes, without padding and borders: so does this.
//
//   lumetry_kit_gtk4 PLAN

#include "css.h"
#include "statement.h"

#include <gtk/gtk.h>

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

/// In the window's surface, which has room for a shadow around the window.
Json placeOf(GtkWidget* widget) {
    double x = 0;
    double y = 0;
    double surfaceX = 0;
    double surfaceY = 0;
    gtk_widget_translate_coordinates(widget, window, 0, 0, &x, &y);
    gtk_native_get_surface_transform(GTK_NATIVE(window), &surfaceX, &surfaceY);
    return {x + surfaceX, y + surfaceY, gtk_widget_get_width(widget),
            gtk_widget_get_height(widget)};
}

Json placesOfShown(GtkWidget* parent) {
    Json places = Json::array();
    for (GtkWidget* child = gtk_widget_get_first_child(parent); child;
         child = gtk_widget_get_next_sibling(child)) {
        if (gtk_widget_get_mapped(child) != FALSE) {
            places.push_back(placeOf(child));
        }
    }
    return places;
}

void addRule(const std::string& selector, const std::string& declarations) {
    css += "\n" + selector + " { box-shadow: none; outline: none; min-width: 0; min-height: 0; " +
           declarations + " }";
}

std::string selectorOf(const Planned& element) {
    return "#" + element.at("id");
}

Json& state(const Planned& element, GtkWidget* widget, std::initializer_list<const char*> kept) {
    Json& stated = statement.add(element.at("id"), element, kept);
    stated["frame"] = placeOf(widget);
    return stated;
}

/// Of something with a text of its own.
void stateText(const Planned& element, GtkWidget* widget) {
    statements.emplace_back([=] {
        state(element, widget, {"family", "size", "weight", "color", "fill"});
    });
}

GtkWidget* label(const Planned& element) {
    GtkWidget* const widget = gtk_label_new(element.at("text").c_str());
    addRule(selectorOf(element), fontOf(element));
    stateText(element, widget);
    return widget;
}

GtkWidget* button(const Planned& element) {
    GtkWidget* const widget = gtk_button_new_with_label(element.at("text").c_str());
    addRule(selectorOf(element), fontOf(element) + surfaceOf(element));
    stateText(element, widget);
    return widget;
}

GtkWidget* styledField(const Planned& element, GtkWidget* widget) {
    gtk_widget_set_size_request(widget, number(element, "width"), -1);
    addRule(selectorOf(element), fontOf(element) + surfaceOf(element));
    stateText(element, widget);
    return widget;
}

GtkWidget* entry(const Planned& element) {
    GtkWidget* const widget = gtk_entry_new();
    gtk_editable_set_text(GTK_EDITABLE(widget), element.at("text").c_str());
    return styledField(element, widget);
}

GtkWidget* spin(const Planned& element) {
    return styledField(element, gtk_spin_button_new_with_range(0, 100, 1));
}

/// In something that keeps it to its size.
GtkWidget* area(const Planned& element) {
    GtkWidget* const widget = gtk_text_view_new();
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(widget), GTK_WRAP_WORD);
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)),
                             element.at("text").c_str(), -1);
    GtkWidget* const around = gtk_scrolled_window_new();
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(around), GTK_POLICY_NEVER,
                                   GTK_POLICY_EXTERNAL);
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(around), widget);
    gtk_widget_set_size_request(around, number(element, "width"), number(element, "height"));
    addRule(selectorOf(element) + " textview", fontOf(element) + surfaceOf(element));
    stateText(element, widget);
    return around;
}

GtkWidget* check(const Planned& element) {
    GtkWidget* const widget = gtk_check_button_new_with_label(element.at("text").c_str());
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {});
        stated["fill"] = "#ffffff";
        stated["items"] = placesOfShown(widget);
    });
    return widget;
}

GtkWidget* list(const Planned& element) {
    constexpr int itemHeight = 26;
    constexpr int belowItems = 20; // where the list is hit and none of its items
    GtkWidget* const widget = gtk_list_box_new();
    const int count = number(element, "items");
    for (int n = 0; n < count; ++n) {
        GtkWidget* const item = gtk_label_new(("Item " + std::to_string(n)).c_str());
        gtk_widget_set_size_request(item, 80, itemHeight);
        gtk_list_box_append(GTK_LIST_BOX(widget), item);
    }
    const auto isShown = [](GtkListBoxRow* row, gpointer hidden) {
        return static_cast<gboolean>(gtk_list_box_row_get_index(row) != GPOINTER_TO_INT(hidden));
    };
    gtk_list_box_set_filter_func(GTK_LIST_BOX(widget), isShown,
                                 GINT_TO_POINTER(number(element, "hidden")), nullptr);
    addRule(selectorOf(element) + " row", "padding: 0; margin: 0; border: none;");
    gtk_widget_set_size_request(widget, 120, count * itemHeight + belowItems);
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {});
        stated["items"] = placesOfShown(widget);
        stated["point"] = pointAtEnd(stated["frame"]);
    });
    return widget;
}

/// Between the first two items there is nothing but the box itself.
Json pointInGap(const Json& items) {
    const auto start = [&](int item, int axis) { return items[item][axis].get<double>(); };
    const auto end = [&](int item, int axis) {
        return start(item, axis) + items[item][axis + 2].get<double>();
    };
    const auto middle = [](double a, double b) { return (a + b) / 2; };
    if (start(1, 1) > start(0, 1)) {
        return {middle(start(0, 0), end(0, 0)), middle(end(0, 1), start(1, 1))};
    }
    return {middle(end(0, 0), start(1, 0)), middle(start(0, 1), end(0, 1))};
}

GtkWidget* boxOf(const Planned& element, GtkOrientation orientation) {
    GtkWidget* const widget = gtk_box_new(orientation, number(element, "gap"));
    for (int n = 0; n < number(element, "items"); ++n) {
        GtkWidget* const item = gtk_label_new(("Item " + std::to_string(n)).c_str());
        gtk_widget_set_size_request(item, 64, 20);
        gtk_widget_set_visible(item, static_cast<gboolean>(n != number(element, "hidden")));
        gtk_box_append(GTK_BOX(widget), item);
    }
    addRule(selectorOf(element), surfaceOf(element) + "color: " + element.at("color") + ";");
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {"fill"});
        stated["items"] = placesOfShown(widget);
        stated["point"] = pointInGap(stated["items"]);
    });
    return widget;
}

GtkWidget* box(const Planned& element) {
    return boxOf(element, GTK_ORIENTATION_VERTICAL);
}

GtkWidget* row(const Planned& element) {
    return boxOf(element, GTK_ORIENTATION_HORIZONTAL);
}

GtkWidget* image(const Planned& element) {
    GtkWidget* const widget = gtk_picture_new();
    gtk_widget_set_size_request(widget, number(element, "width"), number(element, "height"));
    addRule(selectorOf(element), "background: " + element.at("fill") + ";");
    statements.emplace_back([=] { state(element, widget, {"fill"}); });
    return widget;
}

using Maker = GtkWidget* (*)(const Planned&);
const std::map<std::string, Maker> makers = {
    {"label", label}, {"button", button}, {"entry", entry}, {"spin", spin}, {"area", area},
    {"check", check}, {"list", list},     {"box", box},     {"row", row},   {"image", image}};

gboolean stateAll(gpointer /*nothing*/) {
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
    gtk_css_provider_load_from_data(provider, css.c_str(), -1);
    gtk_style_context_add_provider_for_display(
        gdk_display_get_default(), GTK_STYLE_PROVIDER(provider), GTK_STYLE_PROVIDER_PRIORITY_USER);
}

/// The desktop's resolution is not to count for fonts besides the scale, which a session's settings
/// say otherwise.
void keepFontsFromScalingTwice(GtkWidget* inWindow) {
    GtkSettings* const settings = gtk_widget_get_settings(inWindow);
    int resolution = 0;
    g_object_get(settings, "gtk-xft-dpi", &resolution, nullptr);
    g_object_set(settings, "gtk-xft-dpi", resolution / gtk_widget_get_scale_factor(inWindow),
                 nullptr);
}

} // namespace

int main(int /*argc*/, char** argv) {
    constexpr int patienceMs = 800; // for the window manager
    gtk_init();
    window = gtk_window_new();
    keepFontsFromScalingTwice(window);
    gtk_window_set_title(GTK_WINDOW(window), "Accuracy");
    // As most have: what it draws itself around its contents lies within the surface, too.
    gtk_window_set_titlebar(GTK_WINDOW(window), gtk_header_bar_new());
    GtkWidget* const place = gtk_fixed_new();
    gtk_widget_set_size_request(place, 1260, 900);
    // Nothing is to look as if it had the keyboard.
    gtk_widget_set_can_focus(place, FALSE);
    gtk_window_set_child(GTK_WINDOW(window), place);
    fill(place, readPlan(argv[1]));
    gtk_window_present(GTK_WINDOW(window));
    g_timeout_add(patienceMs, stateAll, nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
