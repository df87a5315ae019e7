#include "platform/linux/x11/capture/formats.h"

#include <utility>

namespace lumetry::x11 {
namespace {

bool isTranslucent(const xcb_render_pictforminfo_t& format) {
    constexpr std::uint8_t depth = 32;
    constexpr std::uint16_t eightBits = 0xFF;
    const xcb_render_directformat_t& direct = format.direct;
    return format.type == XCB_RENDER_PICT_TYPE_DIRECT && format.depth == depth &&
           direct.alpha_mask == eightBits && direct.alpha_shift == 24 &&
           direct.red_mask == eightBits && direct.red_shift == 16 &&
           direct.green_mask == eightBits && direct.green_shift == 8 &&
           direct.blue_mask == eightBits && direct.blue_shift == 0;
}

} // namespace

void CaptureFormats::ask() {
    if (std::exchange(isAsked_, true) || !connection_.extensions().render) {
        return;
    }
    const auto reply = connection_.reply(xcb_render_query_pict_formats_reply,
                                         xcb_render_query_pict_formats(connection_.get()));
    if (!reply) {
        return;
    }
    std::unordered_map<xcb_render_pictformat_t, bool> hasAlpha;
    auto format = xcb_render_query_pict_formats_formats_iterator(reply.get());
    for (; format.rem > 0; xcb_render_pictforminfo_next(&format)) {
        hasAlpha[format.data->id] = format.data->direct.alpha_mask != 0;
        if (!translucent_ && isTranslucent(*format.data)) {
            translucent_ = format.data->id;
            ofDepth_[format.data->depth] = format.data->id;
        }
    }
    auto screen = xcb_render_query_pict_formats_screens_iterator(reply.get());
    for (int i = 0; screen.rem > 0; xcb_render_pictscreen_next(&screen), ++i) {
        auto depth = xcb_render_pictscreen_depths_iterator(screen.data);
        for (; i == connection_.screenNumber() && depth.rem > 0;
             xcb_render_pictdepth_next(&depth)) {
            auto visual = xcb_render_pictdepth_visuals_iterator(depth.data);
            for (; visual.rem > 0; xcb_render_pictvisual_next(&visual)) {
                const xcb_render_pictformat_t id = visual.data->format;
                ofVisual_[visual.data->visual] = {id, hasAlpha[id]};
                if (visual.data->visual == connection_.screen().root_visual) {
                    ofDepth_[depth.data->depth] = id;
                }
            }
        }
    }
}

std::optional<xcb_render_pictformat_t> CaptureFormats::translucent() {
    ask();
    return translucent_;
}

std::optional<CaptureFormats::Format> CaptureFormats::ofVisual(xcb_visualid_t visual) {
    ask();
    const auto found = ofVisual_.find(visual);
    return found == ofVisual_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<xcb_render_pictformat_t> CaptureFormats::ofPixmap(std::uint8_t depth) {
    ask();
    const auto found = ofDepth_.find(depth);
    return found == ofDepth_.end() ? std::nullopt : std::optional(found->second);
}

} // namespace lumetry::x11
