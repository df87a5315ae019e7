// Another application's windows, as bare as they get. Each line of standard input makes one:
//
//     X Y WIDTH HEIGHT OVERRIDE_REDIRECT INPUT_ONLY COLOUR PARENT BORDER TRANSLUCENT
//
// (a parent of 0 is the root window; a translucent window has an alpha channel), and its number is
// written as a line of standard output. It is for whoever gets to know the number to map and change
// it. All of them are gone when standard input ends.

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

constexpr std::uint8_t translucentDepth = 32;

xcb_visualid_t visualOf(const xcb_screen_t& screen, std::uint8_t depth) {
    auto depths = xcb_screen_allowed_depths_iterator(&screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth == depth && depths.data->visuals_len > 0) {
            return xcb_depth_visuals(depths.data)->visual_id;
        }
    }
    return 0;
}

xcb_window_t makeWindow(xcb_connection_t* connection, const std::string& description) {
    auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    std::istringstream words(description);
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    bool overrideRedirect = false;
    bool inputOnly = false;
    std::uint32_t colour = 0;
    xcb_window_t parent = 0;
    std::uint16_t border = 0;
    bool translucent = false;
    words >> x >> y >> width >> height >> overrideRedirect >> inputOnly >> colour >> parent >>
        border >> translucent;

    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window_value_list_t values{};
    values.background_pixel = colour;
    values.override_redirect = overrideRedirect ? 1 : 0;
    const std::uint16_t windowClass = inputOnly ? std::uint16_t{XCB_WINDOW_CLASS_INPUT_ONLY}
                                                : std::uint16_t{XCB_WINDOW_CLASS_INPUT_OUTPUT};
    std::uint8_t depth = inputOnly ? std::uint8_t{0} : screen->root_depth;
    xcb_visualid_t visual = screen->root_visual;
    std::uint32_t given = XCB_CW_OVERRIDE_REDIRECT;
    if (!inputOnly) {
        given |= std::uint32_t{XCB_CW_BACK_PIXEL} | XCB_CW_BORDER_PIXEL;
    }
    if (translucent) {
        depth = translucentDepth;
        visual = visualOf(*screen, depth);
        values.colormap = xcb_generate_id(connection);
        given |= XCB_CW_COLORMAP;
        xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_NONE, values.colormap, screen->root,
                            visual);
    }
    xcb_create_window_aux(connection, depth, window, parent != 0 ? parent : screen->root, x, y,
                          width, height, border, windowClass, visual, given, &values);
    return window;
}

} // namespace

int main() {
    auto* const connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        std::cerr << "no X server\n";
        return 1;
    }
    for (std::string line; std::getline(std::cin, line);) {
        const xcb_window_t window = makeWindow(connection, line);
        // The window exists once the server has answered.
        auto* const reply =
            xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr);
        std::free(reply);
        std::cout << window << std::endl;
    }
    xcb_disconnect(connection);
    return 0;
}
