#include "onboarding/views/buttons.h"

#include "onboarding/views/style.h"
#include "onboarding/views/symbols.h"

#include <QFocusEvent>
#include <QPainter>

namespace lumetry::views {

FlatButton::FlatButton(QWidget* parent) : QPushButton(parent) {
    setFlat(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void FlatButton::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange) {
        setCursor(isEnabled() ? Qt::PointingHandCursor : Qt::ArrowCursor);
    }
    QPushButton::changeEvent(event);
}

void FlatButton::setLook(const ButtonLook& look) {
    look_ = look;
    update();
}

void FlatButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(look_.fill);
    painter.setPen(look_.border.alpha() > 0 ? QPen(look_.border, 1) : QPen(Qt::NoPen));
    painter.drawRoundedRect(look_.border.alpha() > 0 ? frame : QRectF(rect()), look_.cornerRadius,
                            look_.cornerRadius);
    if (isEnabled() && (isDown() || underMouse())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? QColor(0, 0, 0, 40) : QColor(255, 255, 255, 18));
        painter.drawRoundedRect(QRectF(rect()), look_.cornerRadius, look_.cornerRadius);
    }
    if (hasFocus() && reachedByKey_) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(whiteAt(0.6), 1.5));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.5, 2.5, -2.5, -2.5),
                                look_.cornerRadius - 2, look_.cornerRadius - 2);
    }
    paintContents(painter);
}

void FlatButton::focusInEvent(QFocusEvent* event) {
    // Coming back to the window changes nothing about how it was reached.
    if (event->reason() != Qt::ActiveWindowFocusReason) {
        reachedByKey_ =
            event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    }
    QPushButton::focusInEvent(event);
}

void FlatButton::paintContents(QPainter& painter) {
    painter.setFont(font());
    painter.setPen(look_.text);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

BackButton::BackButton(QWidget* parent) : FlatButton(parent) {
    constexpr int side = 30;
    constexpr double radius = 8;
    setFixedSize(side, side);
    setAccessibleName(QStringLiteral("back"));
    setLook({Qt::transparent, Qt::transparent, whiteAt(0.7), radius});
}

void BackButton::paintContents(QPainter& painter) {
    constexpr double side = 18;
    paintSymbol(painter, Symbol::chevronLeft,
                {(width() - side) / 2, (height() - side) / 2, side, side}, look().text,
                SymbolWeight::semibold);
}

} // namespace lumetry::views
