// A window of GTK 3 with the widgets of a plan.
//
//   lumetry_audited_gtk3 PLAN    a file of JSON: what, x, y, width, height and css of each widget;
//                                text, name and label where it has them

#include <gtk/gtk.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

namespace {

using Json = nlohmann::json;

std::string textOf(const Json& widget, const char* key) {
    return widget.value(key, std::string());
}

GtkWidget* buttonOf(const std::string& text) {
    return text.empty() ? gtk_button_new() : gtk_button_new_with_label(text.c_str());
}

GtkWidget* entryOf(const std::string& text) {
    GtkWidget* const entry = gtk_entry_new();
    gtk_entry_set_width_chars(GTK_ENTRY(entry), 1);
    gtk_entry_set_text(GTK_ENTRY(entry), text.c_str());
    return entry;
}

GtkWidget* areaOf(const std::string& text) {
    GtkWidget* const area = gtk_text_view_new();
    gtk_text_buffer_set_text(gtk_text_view_get_buffer(GTK_TEXT_VIEW(area)), text.c_str(), -1);
    return area;
}

GtkWidget* pictureOf() {
    constexpr int side = 36;
    constexpr guint32 color = 0x334155FF;
    GdkPixbuf* const pixels = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, side, side);
    gdk_pixbuf_fill(pixels, color);
    GtkWidget* const image = gtk_image_new_from_pixbuf(pixels);
    g_object_unref(pixels);
    return image;
}

GtkWidget* made(const std::string& what, const std::string& text) {
    const char* const label = text.c_str();
    if (what == "label") {
        return gtk_label_new(label);
    }
    if (what == "button") {
        return buttonOf(text);
    }
    if (what == "icon-button") {
        return gtk_button_new_from_icon_name("window-close-symbolic", GTK_ICON_SIZE_BUTTON);
    }
    if (what == "picture-button") {
        GtkWidget* const button = gtk_button_new();
        gtk_container_add(GTK_CONTAINER(button), pictureOf());
        return button;
    }
    if (what == "entry") {
        return entryOf(text);
    }
    if (what == "area") {
        return areaOf(text);
    }
    if (what == "spin") {
        return gtk_spin_button_new_with_range(0, 100, 1);
    }
    if (what == "check") {
        return text.empty() ? gtk_check_button_new() : gtk_check_button_new_with_label(label);
    }
    if (what == "radio") {
        return text.empty() ? gtk_radio_button_new(nullptr)
                            : gtk_radio_button_new_with_label(nullptr, label);
    }
    if (what == "switch") {
        return gtk_switch_new();
    }
    return what == "image" ? pictureOf() : gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
}

/// Puts a label over the widget that is told to be its own.
void addLabel(GtkFixed* place, GtkWidget* widget, const std::string& text, int x, int y) {
    constexpr int above = 20;
    GtkWidget* const label = gtk_label_new_with_mnemonic(("_" + text).c_str());
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), widget);
    gtk_fixed_put(place, label, x, y - above);
}

} // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    if (argc != 2) {
        g_printerr("usage: lumetry_audited_gtk3 PLAN\n");
        return 2;
    }
    std::ifstream file(argv[1]);
    const Json plan = Json::parse(file);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window), "Audited scene");
    GtkFixed* const place = GTK_FIXED(gtk_fixed_new());
    gtk_widget_set_size_request(GTK_WIDGET(place), 1260, 1000);
    gtk_container_add(GTK_CONTAINER(window), GTK_WIDGET(place));
    std::string css = "window { background: white; }"
                      "button, entry { min-width: 0; min-height: 0; padding: 0; box-shadow: none; }"
                      "button image { min-width: 0; }";
    int number = 0;
    for (const Json& each : plan) {
        GtkWidget* const widget = made(each.at("what"), textOf(each, "text"));
        const std::string identifier = "w" + std::to_string(++number);
        const int x = each.at("x");
        const int y = each.at("y");
        gtk_widget_set_name(widget, identifier.c_str());
        gtk_widget_set_size_request(widget, each.at("width"), each.at("height"));
        gtk_fixed_put(place, widget, x, y);
        css += "\n#" + identifier + " { " + textOf(each, "css") + " }";
        const std::string name = textOf(each, "name");
        if (!name.empty()) {
            atk_object_set_name(gtk_widget_get_accessible(widget), name.c_str());
        }
        const std::string label = textOf(each, "label");
        if (!label.empty()) {
            addLabel(place, widget, label, x, y);
        }
    }
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, css.c_str(), -1, nullptr);
    gtk_style_context_add_provider_for_screen(
        gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider), GTK_STYLE_PROVIDER_PRIORITY_USER);
    gtk_widget_show_all(window);
    // Nothing is to look as if it had the keyboard.
    gtk_window_set_focus(GTK_WINDOW(window), nullptr);
    gtk_main();
}
