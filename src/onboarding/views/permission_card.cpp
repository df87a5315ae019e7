#include "onboarding/views/permission_card.h"

#include "onboarding/views/buttons.h"
#include "onboarding/views/style.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

namespace lumetry::views {
namespace {

constexpr int cardHeight = 74;
constexpr double cornerRadius = 10;
constexpr int wellSide = 40;
constexpr int wellMargin = 16;
constexpr int buttonWidth = 74;
constexpr int buttonMargin = 16;
constexpr int cardWidth = 440;
/// Between the well and the button, whether that is shown or not.
constexpr int textWidth = cardWidth - wellMargin - wellSide - 14 - 12 - buttonWidth - buttonMargin;

QColor tintOf(CardTint tint) {
    switch (tint) {
    case CardTint::green:
        return systemGreen();
    case CardTint::orange:
        return systemOrange();
    case CardTint::accent:
        break;
    }
    return pink();
}

FlatButton* makeGrantButton(const QString& title, QWidget* parent) {
    auto* const button = new FlatButton(parent);
    button->setText(QStringLiteral("Grant"));
    button->setAccessibleName(QStringLiteral("Grant ") + title);
    button->setFont(systemFont(13, FontWeight::semibold));
    button->setFixedSize(buttonWidth, 30);
    button->setLook({{pink(0.16), pink(0.5), 8}, pink()});
    return button;
}

QLayout* makeTexts(const PermissionCard::Texts& texts, const QFont& font, QWidget* parent) {
    auto* const heading = new QHBoxLayout;
    heading->setSpacing(8);
    heading->addWidget(
        makeLabel(texts.title, systemFont(15, FontWeight::semibold), whiteAt(1), parent), 0,
        Qt::AlignBottom);
    auto* const tag =
        makeLabel(QStringLiteral("REQUIRED"), systemFont(10.5, FontWeight::bold), pink(), parent);
    // On one baseline with the title.
    const int raise = QFontMetrics(systemFont(15, FontWeight::semibold)).descent() -
                      QFontMetrics(tag->font()).descent();
    tag->setContentsMargins(0, 0, 0, raise);
    heading->addWidget(tag, 0, Qt::AlignBottom);
    heading->addStretch();
    auto* const column = new QVBoxLayout;
    column->setSpacing(3);
    column->addStretch();
    column->addLayout(heading);
    column->addWidget(makeLabel(texts.description, font, whiteAt(0.55), parent));
    column->addStretch();
    return column;
}

} // namespace

PermissionCard::PermissionCard(Symbol symbol, const Texts& texts, const QFont& font,
                               QWidget* parent)
    : QWidget(parent),
      icon_(new SymbolView(symbol, 19, SymbolWeight::medium, pink(), texts.title, this)),
      button_(makeGrantButton(texts.title, this)),
      done_(makeLabel(QStringLiteral("Granted ✓"), systemFont(13, FontWeight::semibold),
                      systemGreen(), this)) {
    setFixedSize(cardWidth, cardHeight);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(wellMargin, 0, buttonMargin, 0);
    row->setSpacing(0);
    icon_->setFixedSize(wellSide, wellSide); // room to spring up in
    auto* const well = new QHBoxLayout;
    well->addWidget(icon_, 0, Qt::AlignCenter);
    auto* const wellWidget = new QWidget(this);
    wellWidget->setLayout(well);
    well->setContentsMargins(0, 0, 0, 0);
    wellWidget->setFixedSize(wellSide, wellSide);
    row->addWidget(wellWidget);
    row->addSpacing(14);
    auto* const column = new QWidget(this);
    column->setLayout(makeTexts(texts, font, column));
    column->layout()->setContentsMargins(0, 0, 0, 0);
    column->setFixedWidth(textWidth);
    row->addWidget(column);
    row->addStretch();
    row->addWidget(button_);
    row->addWidget(done_);
    done_->setContentsMargins(0, 0, 2, 0);
    done_->hide();
}

QFont PermissionCard::fontOf(const QStringList& descriptions) {
    return fitFont(systemFont(13), descriptions, textWidth);
}

void PermissionCard::setState(const CardState& state) {
    icon_->setTint(tintOf(state.icon));
    button_->setVisible(state.grantButtonShown);
    if (state.done) {
        done_->setText(QString::fromStdString(*state.done));
        setLabelColor(*done_, tintOf(state.icon));
    }
    done_->setVisible(state.done.has_value());
}

void PermissionCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBox(painter, rect(), {whiteAt(0.05), whiteAt(0.08), cornerRadius});
    paintBox(painter, QRectF(wellMargin, (height() - wellSide) / 2.0, wellSide, wellSide),
             {whiteAt(0.07), {}, cornerRadius});
}

} // namespace lumetry::views
