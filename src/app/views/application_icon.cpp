#include "app/views/application_icon.h"

#include "onboarding/views/style.h"
#include "platform/qt/widgets/template_icon.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

namespace lumetry {

void setApplicationIcon(const TemplateImage& mark) {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(views::background());
        constexpr double roundness = 0.22;
        painter.drawRoundedRect(picture.rect(), side * roundness, side * roundness);
        // A small icon has no room for a margin.
        constexpr int smallSide = 24;
        const double inset = side <= smallSide ? 0 : side / 8.0;
        paintTemplateImage(painter, mark,
                           QRectF(picture.rect()).adjusted(inset, inset, -inset, -inset),
                           views::pink());
        painter.end();
        icon.addPixmap(picture);
    }
    QApplication::setWindowIcon(icon);
}

} // namespace lumetry
