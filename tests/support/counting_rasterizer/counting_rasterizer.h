#pragma once

#include "platform/qt/painter_rasterizer.h"

#include <QGuiApplication>

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace lumetry::desktop {

/// Draws as the program does and counts the pixels. One at a time.
class CountingRasterizer final : public Rasterizer {
public:
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override {
        return painter_.measure(text, font);
    }
    [[nodiscard]] double overhang(std::string_view text, const Font& font) const override {
        return painter_.overhang(text, font);
    }
    [[nodiscard]] Bitmap rasterize(const DisplayList& list, const Rect& area,
                                   Edges edges) const override {
        Bitmap bitmap = painter_.rasterize(list, area, edges);
        count_ += bitmap.pixels.size();
        return bitmap;
    }

    /// How many pixels have been drawn since.
    [[nodiscard]] std::size_t takeCount() const { return std::exchange(count_, 0); }

private:
    int argumentCount_ = 1;
    std::array<char, 5> name_ = {"test"};
    std::array<char*, 2> arguments_ = {name_.data(), nullptr};
    QGuiApplication application_{argumentCount_, arguments_.data()}; ///< for the fonts
    PainterRasterizer painter_;
    mutable std::size_t count_ = 0;
};

} // namespace lumetry::desktop
