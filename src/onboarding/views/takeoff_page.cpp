#include "onboarding/views/takeoff_page.h"

#include "onboarding/views/keycap.h"
#include "onboarding/views/overlap.h"
#include "onboarding/views/pill.h"
#include "onboarding/views/pulse.h"
#include "onboarding/views/style.h"

#include <QHBoxLayout>
#include <QLabel>

namespace lumetry::views {
namespace {

QWidget* hintChip(const QString& text, QWidget* parent) {
    return new Pill(
        makeLabel(text, monospacedFont(12.5, FontWeight::semibold), whiteAt(0.9), parent),
        {8, 5, 8, 5}, {capFill(), whiteAt(0.14), 7}, parent);
}

QLabel* hintLabel(const QString& text, QWidget* parent) {
    return makeLabel(text, systemFont(13), whiteAt(0.55), parent);
}

QWidget* separator(QWidget* parent) {
    auto* const line = new QWidget(parent);
    line->setFixedSize(1, 20);
    line->setAutoFillBackground(true);
    QPalette palette;
    palette.setColor(QPalette::Window, whiteAt(0.15));
    line->setPalette(palette);
    return line;
}

} // namespace

TakeoffPage::TakeoffPage(QWidget* parent) : Page(parent) {
    auto* const title = makeLabel(QStringLiteral("Woohoo — you're all set! 🎉"),
                                  systemFont(29, FontWeight::bold), whiteAt(1), this);
    auto* const subtitle =
        makeLabel(QStringLiteral("Press the shortcut below and start measuring anything."),
                  systemFont(14.5), whiteAt(0.6), this);
    QWidget* const keys = makeKeysRow();
    constexpr double nudgeAlpha = 0.9;
    nudge_ = makeLabel(QStringLiteral("waiting for your keys…"),
                       monospacedFont(13, FontWeight::medium), pink(nudgeAlpha), this);
    nudge_->setAlignment(Qt::AlignCenter);
    auto* const blink = new Pulse(nudge_, {1, 0.4, 0.9}, [this](double opacity) {
        setLabelColor(*nudge_, pink(nudgeAlpha * opacity));
    });
    blink->begin();
    QWidget* const hints = makeHintRow();
    add(title, 10);
    add(subtitle, 32);
    add(keys, 20, Keycap::margin());
    add(nudge_, 30);
    add(hints, 0);
    setStaggerViews({title, subtitle, keys, nudge_, hints});
}

QWidget* TakeoffPage::makeKeysRow() {
    auto* const row = new QWidget(this);
    control_ = new Keycap({Symbol::control, QStringLiteral("⌃"), QStringLiteral("control")},
                          {96, 82}, row);
    shift_ =
        new Keycap({Symbol::shift, QStringLiteral("⇧"), QStringLiteral("shift")}, {96, 82}, row);
    m_ = new Keycap({std::nullopt, QStringLiteral("M"), QString(), 30}, {82, 82}, row);
    const QFont plusFont = systemFont(19, FontWeight::medium);
    auto* const line = new QHBoxLayout(row);
    line->setContentsMargins(Keycap::margin(), Keycap::margin(), Keycap::margin(),
                             Keycap::margin());
    line->setSpacing(10);
    for (Keycap* const cap : {control_, shift_, m_}) {
        if (cap != control_) {
            line->addWidget(makeLabel(QStringLiteral("+"), plusFont, whiteAt(0.35), row), 0,
                            Qt::AlignVCenter);
        }
        line->addItem(new OverlappingItem(cap, Keycap::margin()));
    }
    return row;
}

QWidget* TakeoffPage::makeHintRow() {
    auto* const hints = new QWidget(this);
    auto* const row = new QHBoxLayout(hints);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(hintChip(QStringLiteral("⌥ option"), hints));
    row->addSpacing(8);
    row->addWidget(hintLabel(QStringLiteral("hold to measure gaps"), hints));
    row->addSpacing(18);
    row->addWidget(separator(hints));
    row->addSpacing(18);
    row->addWidget(hintChip(QStringLiteral("esc"), hints));
    row->addSpacing(8);
    row->addWidget(hintLabel(QStringLiteral("exit"), hints));
    return hints;
}

Keycap& TakeoffPage::cap(PracticeKey key) {
    switch (key) {
    case PracticeKey::control:
        return *control_;
    case PracticeKey::shift:
        return *shift_;
    case PracticeKey::m:
        break;
    }
    return *m_;
}

void TakeoffPage::setNudge(const QString& text) {
    nudge_->setText(text);
}

} // namespace lumetry::views
