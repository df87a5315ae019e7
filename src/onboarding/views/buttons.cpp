#include "onboarding/views/buttons.h"

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
    const double cornerRadius = look_.box.cornerRadius;
    paintBox(painter, rect(), look_.box);
    if (isEnabled() && (isDown() || underMouse())) {
        paintBox(painter, rect(),
                 {isDown() ? QColor(0, 0, 0, 40) : QColor(255, 255, 255, 18), {}, cornerRadius});
    }
    if (hasFocus() && reachedByKey_) {
        constexpr int inset = 2;
        paintBox(painter, rect().adjusted(inset, inset, -inset, -inset),
                 {Qt::transparent, whiteAt(0.6), cornerRadius - inset, 1.5});
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
    setLook({{Qt::transparent, {}, radius}, whiteAt(0.7)});
}

void BackButton::paintContents(QPainter& painter) {
    constexpr double side = 18;
    paintSymbol(painter, Symbol::chevronLeft,
                {(width() - side) / 2, (height() - side) / 2, side, side}, look().text,
                SymbolWeight::semibold);
}

} // namespace lumetry::views
