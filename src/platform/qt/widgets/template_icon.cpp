#include "platform/qt/widgets/template_icon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <utility>

namespace lumetry {
namespace {

class TemplateIconEngine final : public QIconEngine {
public:
    TemplateIconEngine(TemplateImage image, const QColor& color)
        : image_(std::move(image)), color_(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode /*mode*/,
               QIcon::State /*state*/) override {
        paintTemplateImage(*painter, image_, rect, color_);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, {{0, 0}, size}, mode, state);
        return pixmap;
    }

    /// Trays that take pictures over the bus are sent these: 16, 22 and 32 points at the usual
    /// scales.
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int side : {16, 20, 22, 24, 28, 32, 33, 44, 48, 64}) {
            sizes.push_back({side, side});
        }
        return sizes;
    }

    [[nodiscard]] QIconEngine* clone() const override {
        return new TemplateIconEngine(image_, color_);
    }

private:
    TemplateImage image_;
    QColor color_;
};

} // namespace

void paintTemplateImage(QPainter& painter, const TemplateImage& image, const QRectF& destination,
                        const QColor& color) {
    const StrokedPath strokes = image.drawingHandler(
        {destination.x(), destination.y(), destination.width(), destination.height()});
    QPainterPath path;
    for (const auto& line : strokes.lines) {
        path.moveTo(line.front().x, line.front().y);
        for (const Point& point : line) {
            path.lineTo(point.x, point.y);
        }
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, strokes.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    painter.restore();
}

QIcon templateIcon(const TemplateImage& image, const QColor& color) {
    return QIcon(new TemplateIconEngine(image, color));
}

} // namespace lumetry
