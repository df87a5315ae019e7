#pragma once

#include "platform/qt/fonts.h"
#include "platform/rasterizer.h"

namespace lumetry {

/// Draws with QPainter. Needs a QGuiApplication for its fonts.
class PainterRasterizer final : public Rasterizer {
public:
    [[nodiscard]] Size measure(std::string_view text, const Font& font) const override;
    [[nodiscard]] double overhang(std::string_view text, const Font& font) const override;
    [[nodiscard]] Bitmap rasterize(const DisplayList& list, const Rect& area,
                                   Edges edges) const override;

private:
    SystemFonts fonts_;
};

} // namespace lumetry
