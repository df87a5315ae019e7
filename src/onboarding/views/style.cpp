#include "onboarding/views/style.h"

#include "base/color.h"
#include "platform/qt/fonts.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace lumetry::views {
namespace {

QColor toQt(const Color& color, double alpha) {
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                            static_cast<float>(color.blue), static_cast<float>(alpha));
}

} // namespace

QColor pink(double alpha) {
    return toQt(accentPink, alpha);
}

QColor whiteAt(double alpha) {
    return toQt(white, alpha);
}

QColor background() {
    return toQt(darkBackground, 1);
}

QColor capFill() {
    return toQt({0.13, 0.12, 0.15, 1}, 1);
}

QColor systemGreen() {
    return {50, 215, 75};
}

QColor systemOrange() {
    return {255, 159, 10};
}

void paintBox(QPainter& painter, const QRectF& rect, const Box& box) {
    const double inset = box.border.isValid() ? box.borderWidth / 2 : 0;
    painter.setBrush(box.fill);
    painter.setPen(box.border.isValid() ? QPen(box.border, box.borderWidth) : QPen(Qt::NoPen));
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), box.cornerRadius - inset,
                            box.cornerRadius - inset);
}

QFont widgetFont(const Font& font) {
    static const SystemFonts fonts;
    constexpr double pointsPerInch = 72;
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen ? screen->logicalDotsPerInchY() : pointsPerInch;
    QFont result = fonts.font(font);
    result.setPointSizeF(font.size * pointsPerInch / dotsPerInch);
    return result;
}

QFont systemFont(double size, FontWeight weight) {
    return widgetFont({FontFamily::system, size, weight});
}

QFont monospacedFont(double size, FontWeight weight) {
    return widgetFont({FontFamily::monospacedSystem, size, weight});
}

QLabel* makeLabel(const QString& text, const QFont& font, const QColor& color, QWidget* parent) {
    auto* const label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    label->setMargin(0);
    setLabelColor(*label, color);
    // A drag that begins on it moves the window.
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

QFont fitFont(QFont font, const QStringList& texts, double width) {
    double tightest = 0;
    for (const QString& text : texts) {
        const double surplus = QFontMetricsF(font).horizontalAdvance(text) - width;
        tightest = std::max(tightest, surplus / static_cast<double>(text.size()));
    }
    if (tightest > 0) {
        constexpr double finest = 64; // of the steps in which letters are placed
        font.setLetterSpacing(QFont::AbsoluteSpacing, -std::ceil(tightest * finest) / finest);
    }
    return font;
}

void setLabelColor(QLabel& label, const QColor& color) {
    QPalette palette = label.palette();
    if (palette.color(QPalette::WindowText) != color) {
        palette.setColor(QPalette::WindowText, color);
        label.setPalette(palette);
    }
}

} // namespace lumetry::views
