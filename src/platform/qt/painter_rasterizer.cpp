#include "platform/qt/painter_rasterizer.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <optional>
#include <variant>

namespace lumetry {
namespace {

/// 72 dots per inch, where a font of that many points is as many pixels high.
constexpr int dotsPerMeter = 2835;

constexpr double halfPixel = 0.5;

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QColor colorOf(const Color& color) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

QFontMetricsF metricsOf(const QFont& font) {
    static const QImage device = [] {
        QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.setDotsPerMeterX(dotsPerMeter);
        image.setDotsPerMeterY(dotsPerMeter);
        return image;
    }();
    return {font, &device};
}

/// Draws commands of view space (y upwards) on an image that shows one area of it (y downwards).
class AreaPainter {
public:
    AreaPainter(QImage& image, const Rect& area, const SystemFonts& fonts)
        : painter_(&image), area_(area), fonts_(fonts) {
        painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    }

    void operator()(const FillRoundedRect& command) {
        painter_.fillPath(roundedRect(onWholePixels(visiblePart(command.rect, 2 * command.radius)),
                                      command.radius),
                          colorOf(command.color));
    }

    void operator()(const StrokeRoundedRect& command) {
        const double margin = 2 * command.radius + command.lineWidth;
        const Rect rect = visiblePart(command.rect, margin);
        const QPen pen(colorOf(command.color), command.lineWidth);
        if (command.lineWidth > 1) {
            painter_.strokePath(roundedRect(rect, command.radius), pen);
            return;
        }
        // A hairline covers the outermost row of pixels within its outer edge and not two halves of
        // one; what is thinner, the outermost row of what it runs around.
        const double outwards = command.lineWidth < 1 ? 0 : halfPixel;
        const Rect outer = onWholePixels(inset(rect, -outwards, -outwards));
        const Rect line = inset(outer, halfPixel, halfPixel);
        if (!line.isNull()) {
            painter_.strokePath(roundedRect(line, command.radius - (halfPixel - outwards)), pen);
        }
    }

    void operator()(const FillEllipse& command) {
        QPainterPath path;
        path.addEllipse(onImage(command.rect));
        painter_.fillPath(path, colorOf(command.color));
    }

    void operator()(const StrokeEllipse& command) {
        QPainterPath path;
        path.addEllipse(onImage(command.rect));
        painter_.strokePath(path, QPen(colorOf(command.color), command.lineWidth));
    }

    void operator()(const StrokeLine& command) {
        auto [a, b] = command.lineWidth <= 1 ? alongPixelCentres(command.a, command.b)
                                             : std::pair(command.a, command.b);
        const auto skipped = clipToArea(a, b, command.lineWidth);
        if (!skipped) {
            return;
        }
        QPen pen(colorOf(command.color), command.lineWidth, Qt::SolidLine, Qt::FlatCap);
        if (!command.dash.empty()) {
            QList<qreal> pattern;
            for (const double length : command.dash) {
                pattern.append(length / command.lineWidth);
            }
            pen.setDashPattern(pattern);
            pen.setDashOffset(*skipped / command.lineWidth);
        }
        painter_.setPen(pen);
        painter_.drawLine(onImage(a), onImage(b));
    }

    void operator()(const DrawText& command) {
        const QFont font = fonts_.font(command.font);
        const double descent = QFontMetricsF(font, painter_.device()).descent();
        // Rounded before it is turned into the image's space, so that parts drawn apart fit
        // together.
        const Point baseline = {std::round(command.lineBox.minX()),
                                std::round(command.lineBox.minY() + descent)};
        painter_.setFont(font);
        painter_.setPen(colorOf(command.color));
        painter_.drawText(onImage(baseline), textOf(command.text));
    }

private:
    [[nodiscard]] QPointF onImage(Point point) const {
        return {point.x - area_.minX(), area_.maxY() - point.y};
    }

    [[nodiscard]] QRectF onImage(const Rect& rect) const {
        return {rect.minX() - area_.minX(), area_.maxY() - rect.maxY(), rect.width, rect.height};
    }

    [[nodiscard]] QPainterPath roundedRect(const Rect& rect, double radius) const {
        QPainterPath path;
        const double most = std::max(std::min({radius, rect.width / 2, rect.height / 2}), 0.0);
        path.addRoundedRect(onImage(rect), most, most);
        return path;
    }

    /// The rectangle with its far-off edges brought in to where their curves and lines still do not
    /// show: elements may claim any coordinates, and the painter holds only so many pixels.
    /// @param margin twice the radius of the corners at least, or they would be made smaller
    [[nodiscard]] Rect visiblePart(const Rect& rect, double margin) const {
        const Rect reach = inset(area_, -margin - 2, -margin - 2);
        const double left = std::clamp(rect.minX(), reach.minX(), reach.maxX());
        const double right = std::clamp(rect.maxX(), reach.minX(), reach.maxX());
        const double bottom = std::clamp(rect.minY(), reach.minY(), reach.maxY());
        const double top = std::clamp(rect.maxY(), reach.minY(), reach.maxY());
        return {left, bottom, right - left, top - bottom};
    }

    /// Filled edges on whole pixels, so that they are sharp.
    [[nodiscard]] static Rect onWholePixels(const Rect& rect) {
        const double left = std::round(rect.minX());
        const double bottom = std::round(rect.minY());
        return {left, bottom, std::round(rect.maxX()) - left, std::round(rect.maxY()) - bottom};
    }

    /// Hairlines through the middle of pixels, so that they cover one row of them and not two
    /// halves.
    [[nodiscard]] static std::pair<Point, Point> alongPixelCentres(Point a, Point b) {
        if (a.y == b.y) {
            a.y = b.y = std::floor(a.y) + 0.5;
        } else if (a.x == b.x) {
            a.x = b.x = std::floor(a.x) + 0.5;
        }
        return {a, b};
    }

    /// Cuts what lies far outside off the segment, since a dashed line costs by its length.
    /// @return the length cut off before a; absent when nothing is left
    [[nodiscard]] std::optional<double> clipToArea(Point& a, Point& b, double lineWidth) const {
        const Rect reach = inset(area_, -lineWidth - 2, -lineWidth - 2);
        const double dx = b.x - a.x;
        const double dy = b.y - a.y;
        double from = 0;
        double to = 1;
        const auto clip = [&](double start, double delta, double low, double high) {
            if (delta == 0) {
                return start >= low && start <= high;
            }
            const auto [enter, leave] =
                std::minmax({(low - start) / delta, (high - start) / delta});
            from = std::max(from, enter);
            to = std::min(to, leave);
            return from < to;
        };
        if (!clip(a.x, dx, reach.minX(), reach.maxX()) ||
            !clip(a.y, dy, reach.minY(), reach.maxY())) {
            return std::nullopt;
        }
        const Point start = a;
        a = {start.x + from * dx, start.y + from * dy};
        b = {start.x + to * dx, start.y + to * dy};
        return from * std::hypot(dx, dy);
    }

    QPainter painter_;
    Rect area_;
    const SystemFonts& fonts_;
};

/// Makes every pixel either opaque or transparent.
void harden(Bitmap& bitmap) {
    constexpr unsigned alphaShift = 24;
    constexpr std::uint32_t leastAlpha = 128;
    for (std::uint32_t& pixel : bitmap.pixels) {
        pixel = (pixel >> alphaShift) >= leastAlpha ? qUnpremultiply(pixel) | 0xFF000000U : 0;
    }
}

} // namespace

Size PainterRasterizer::measure(std::string_view text, const Font& font) const {
    const QFontMetricsF metrics = metricsOf(fonts_.font(font));
    return {metrics.horizontalAdvance(textOf(text)), metrics.height()};
}

double PainterRasterizer::overhang(std::string_view text, const Font& font) const {
    // The line box is made for plain letters, and looking at each glyph takes its time.
    if (std::ranges::all_of(text, [](char one) { return static_cast<signed char>(one) >= 0; })) {
        return 0;
    }
    const QFontMetricsF metrics = metricsOf(fonts_.font(font));
    const QString drawn = textOf(text);
    const QRectF ink = metrics.tightBoundingRect(drawn);
    return std::max({-metrics.ascent() - ink.top(), ink.bottom() - metrics.descent(), -ink.left(),
                     ink.right() - metrics.horizontalAdvance(drawn), 0.0});
}

Bitmap PainterRasterizer::rasterize(const DisplayList& list, const Rect& area, Edges edges) const {
    Bitmap bitmap(static_cast<int>(area.width), static_cast<int>(area.height));
    QImage image(reinterpret_cast<uchar*>(bitmap.pixels.data()), bitmap.width, bitmap.height,
                 static_cast<qsizetype>(bitmap.width) * 4, QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    {
        AreaPainter painter(image, area, fonts_);
        for (const DrawCommand& command : list) {
            if (!intersect(coverage(command), area).isNull()) {
                std::visit(painter, command);
            }
        }
    }
    if (edges == Edges::hard) {
        harden(bitmap);
    }
    return bitmap;
}

} // namespace lumetry
