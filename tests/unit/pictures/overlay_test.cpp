#include "approval.h"

#include "platform/qt/painter_rasterizer.h"
#include "platform/scaled_canvas.h"
#include "render/overlay_view.h"
#include "support/fake_platform/fake_windows.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <functional>

namespace lumetry {
namespace {

/// What is drawn, over a light and a dark ground.
/// @param size in points
QImage drawn(const Size& size, const std::function<void(Canvas&)>& draw,
             Edges edges = Edges::smooth) {
    const double ratio = pixelRatio();
    const PainterRasterizer rasterizer;
    RecordingCanvas pixels(rasterizer);
    ScaledCanvas points(pixels, ratio);
    draw(points);
    const Bitmap bitmap = rasterizer.rasterize(
        pixels.displayList(), {0, 0, size.width * ratio, size.height * ratio}, edges);
    QImage image(bitmap.width, bitmap.height, QImage::Format_RGB32);
    image.fill(QColor(246, 246, 248));
    QPainter painter(&image);
    painter.fillRect(QRect(bitmap.width / 2, 0, bitmap.width, bitmap.height), QColor(38, 42, 50));
    painter.drawImage(0, 0,
                      QImage(reinterpret_cast<const uchar*>(bitmap.pixels.data()), bitmap.width,
                             bitmap.height, static_cast<qsizetype>(bitmap.width) * 4,
                             QImage::Format_ARGB32_Premultiplied));
    return image;
}

class OverlayPictures : public testing::Test {
protected:
    static constexpr Size size = {440, 280};
    static constexpr Rect whole = {0, 0, size.width, size.height};

    [[nodiscard]] QImage picture(Edges edges = Edges::smooth) {
        return drawn(
            size, [this](Canvas& canvas) { view.draw(canvas, whole); }, edges);
    }

    void showElement() {
        view.targetRect = {150, 60, 140, 36};
        view.header = "Button · Save";
        view.rows = {{"size", "140 × 36", {}},
                     {"font", "Inter 14 semibold", {}},
                     {"fill", "≈ #1E90FF", Color{0.12, 0.56, 1, 1}},
                     {"text", "#FFFFFF", white},
                     {"contrast", "3.24 ✕ AA", {}}};
    }

    FakeWindowServer windowServer;
    OverlayView view{windowServer};
};

TEST_F(OverlayPictures, OutlineGlanceAndExitTag) {
    windowServer.allScreens = {{whole, whole}};
    view.exitTag = true;
    showElement();
    expectApproved(picture(), "overlay");
}

TEST_F(OverlayPictures, HardEdgesWithoutACompositor) {
    showElement();
    expectApproved(picture(Edges::hard), "overlay-hard");
}

TEST_F(OverlayPictures, GlanceBesideThePointer) {
    view.cursorPoint = {150, 240};
    view.rows = {{"size", "24 × 24", {}}};
    expectApproved(picture(), "glance-at-pointer");
}

TEST_F(OverlayPictures, Distances) {
    view.measureA = {60, 60, 90, 40};
    view.measureB = {200, 80, 150, 60};
    const QImage beside = picture();
    view.measureB = {190, 160, 120, 60};
    expectApproved(sideBySide({beside, picture()}), "distances");
}

TEST(RasterizerPictures, Texts) {
    expectApproved(
        drawn({420, 220},
              [](Canvas& canvas) {
                  double y = 196;
                  for (const auto family : {FontFamily::system, FontFamily::monospacedSystem}) {
                      for (const auto weight : {FontWeight::regular, FontWeight::medium,
                                                FontWeight::semibold, FontWeight::bold}) {
                          const Font font = {family, 11.5, weight};
                          canvas.drawText("Ag 120 × 40 ≈ ⌃⇧⌥ ✕", {8.5, y}, font, OverlayView::pink);
                          canvas.drawText("Ag 120 × 40 ≈ ⌃⇧⌥ ✕", {228.5, y}, font,
                                          OverlayView::faint);
                          y -= 20;
                      }
                  }
                  canvas.drawText("\u01FA\u1EA8g| 🎉", {8, 6},
                                  {FontFamily::system, 24, FontWeight::regular}, OverlayView::pink);
              }),
        "texts");
}

TEST(RasterizerPictures, Shapes) {
    expectApproved(
        drawn({240, 150},
              [](Canvas& canvas) {
                  // Chips with rims, wherever they begin.
                  double x = 8;
                  for (const double start : {0.0, 0.3, 0.5, 0.75}) {
                      for (const double width : {0.5, 1.0, 1.5}) {
                          const Rect chip = {x + start, 120 + start, 12, 12};
                          canvas.fillRoundedRect(chip, 3, OverlayView::pink.withAlpha(0.5));
                          canvas.strokeRoundedRect(chip, 3, OverlayView::faint, width);
                          x += 18.5;
                      }
                  }
                  x = 10;
                  for (const double side : {4.0, 6.0, 11.0, 20.0}) {
                      for (const double width : {1.0, 1.5}) {
                          canvas.fillEllipse({x, 85, side, side}, OverlayView::faint);
                          canvas.strokeEllipse({x, 85, side, side}, OverlayView::pink, width);
                          x += side + 15;
                      }
                  }
                  constexpr std::array<double, 2> dash = {5, 3};
                  double y = 70;
                  for (const double width : {0.5, 1.0, 1.5, 3.0}) {
                      canvas.strokeLine({10, y}, {110.5, y}, OverlayView::pink, width, {});
                      canvas.strokeLine({130, y}, {230.5, y}, OverlayView::pink, width, dash);
                      y -= 8.25;
                  }
                  canvas.strokeLine({10, 10}, {90.5, 35}, OverlayView::pink, 1.5, dash);
                  canvas.strokeLine({110, 10}, {110, 35}, OverlayView::pink, 1.5, dash);
                  canvas.fillRoundedRect({140, 10, 60, 24}, 12, OverlayView::panelBG);
                  canvas.strokeRoundedRect({140, 10, 60, 24}, 12, OverlayView::pink, 1);
                  canvas.fillRoundedRect({208.4, 10.4, 20, 20}, 0, OverlayView::pink);
              }),
        "shapes");
}

} // namespace
} // namespace lumetry
