#include "block_rasterizer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace lumetry::desktop {
namespace {

struct Block {
    Rect rect;
    Color color;
};

std::vector<Block> frameOf(const Rect& rect, double width, const Color& color) {
    const Rect out = inset(rect, -width / 2, -width / 2);
    return {{{out.x, out.y, out.width, width}, color},
            {{out.x, out.maxY() - width, out.width, width}, color},
            {{out.x, out.y + width, width, out.height - 2 * width}, color},
            {{out.maxX() - width, out.y + width, width, out.height - 2 * width}, color}};
}

struct BlocksOf {
    using Blocks = std::vector<Block>;
    Blocks operator()(const FillRoundedRect& command) const {
        return {{command.rect, command.color}};
    }
    Blocks operator()(const FillEllipse& command) const { return {{command.rect, command.color}}; }
    Blocks operator()(const StrokeRoundedRect& command) const {
        return frameOf(command.rect, command.lineWidth, command.color);
    }
    Blocks operator()(const StrokeEllipse& command) const {
        return frameOf(command.rect, command.lineWidth, command.color);
    }
    Blocks operator()(const StrokeLine& command) const {
        const Rect line = {std::min(command.a.x, command.b.x), std::min(command.a.y, command.b.y),
                           std::abs(command.a.x - command.b.x),
                           std::abs(command.a.y - command.b.y)};
        return {{inset(line, -command.lineWidth / 2, -command.lineWidth / 2), command.color}};
    }
    Blocks operator()(const DrawText& command) const { return {{command.lineBox, command.color}}; }
};

std::uint32_t over(std::uint32_t below, const Color& color, bool hard) {
    const auto mix = [&](unsigned shift, double component) {
        const double under = (below >> shift) & 0xFF;
        const double value = component * color.alpha * 255 + under * (1 - color.alpha);
        return static_cast<std::uint32_t>(std::lround(value)) << shift;
    };
    if (hard) {
        return color.alpha < 0.5 ? below : over(0, color.withAlpha(1), false);
    }
    return mix(24, 1) | mix(16, color.red) | mix(8, color.green) | mix(0, color.blue);
}

} // namespace

Size BlockRasterizer::measure(std::string_view text, const Font&) const {
    return {8.0 * static_cast<double>(text.size()), 16};
}

Bitmap BlockRasterizer::rasterize(const DisplayList& list, const Rect& area, Edges edges) const {
    Bitmap bitmap(static_cast<int>(area.width), static_cast<int>(area.height));
    count_ += bitmap.pixels.size();
    for (const DrawCommand& command : list) {
        for (const Block& block : std::visit(BlocksOf{}, command)) {
            for (int y = 0; y < bitmap.height; ++y) {
                for (int x = 0; x < bitmap.width; ++x) {
                    const Point centre = {area.x + x + 0.5, area.maxY() - y - 0.5};
                    auto& pixel = bitmap.pixels[static_cast<std::size_t>(y) *
                                                    static_cast<std::size_t>(bitmap.width) +
                                                static_cast<std::size_t>(x)];
                    if (block.rect.contains(centre)) {
                        pixel = over(pixel, block.color, edges == Edges::hard);
                    }
                }
            }
        }
    }
    return bitmap;
}

} // namespace lumetry::desktop
