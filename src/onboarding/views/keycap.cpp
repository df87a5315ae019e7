#include "onboarding/views/keycap.h"

#include "onboarding/views/glow.h"
#include "onboarding/views/pulse.h"
#include "onboarding/views/style.h"

#include <QPainter>
#include <QVBoxLayout>

#include <cmath>

namespace lumetry::views {
namespace {

constexpr double cornerRadius = 14;
constexpr double glowRadius = 14;
constexpr double restingGlow = 0.18;
constexpr double litGlow = 0.7;

QColor blend(const QColor& from, const QColor& to, double share) {
    const auto part = static_cast<float>(share);
    const auto mix = [part](float a, float b) { return a + (b - a) * part; };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()), mix(from.alphaF(), to.alphaF()));
}

} // namespace

Keycap::Keycap(const Face& face, const QSize& cap, QWidget* parent) : QWidget(parent), cap_(cap) {
    setFixedSize(cap + QSize(2 * margin(), 2 * margin()));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(face.name.isEmpty() ? face.glyphText : face.name);
    glow_ = makeGlow(cap, glowRadius, pink(), [&](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        paintBox(painter, QRectF({0, 0}, cap), {Qt::white, {}, cornerRadius});
    });
    auto* const column = new QVBoxLayout(this);
    column->setSpacing(4);
    column->setContentsMargins(margin(), margin(), margin(), margin());
    column->addStretch();
    if (face.symbol) {
        column->addWidget(new SymbolView(*face.symbol, face.glyphSize, SymbolWeight::medium,
                                         whiteAt(1), face.glyphText, this),
                          0, Qt::AlignHCenter);
    } else {
        column->addWidget(makeLabel(face.glyphText,
                                    monospacedFont(face.glyphSize, FontWeight::semibold),
                                    whiteAt(1), this),
                          0, Qt::AlignHCenter);
    }
    if (!face.name.isEmpty()) {
        column->addWidget(
            makeLabel(face.name, monospacedFont(11, FontWeight::medium), whiteAt(0.55), this), 0,
            Qt::AlignHCenter);
    }
    column->addStretch();
    look_.glow = restingGlow;
    breath_ = new Pulse(this, {0.12, 0.4, 1.5}, [this](double glow) {
        look_.glow = glow;
        update();
    });
    breath_->begin();
}

int Keycap::margin() {
    return glowReach(glowRadius);
}

bool Keycap::isBreathing() const {
    return breath_->isRunning();
}

void Keycap::setActive(bool active) {
    if (active == active_) {
        return;
    }
    active_ = active;
    setAccessibleDescription(active ? QStringLiteral("held") : QString());
    breath_->stop();
    delete transition_;
    const Look goal = active ? Look{1, litGlow} : Look{0, restingGlow};
    transition_ = animate(
        this, {active ? 0.12 : 0.25, standardEase()}, [this, from = look_, goal](double share) {
            look_ = {std::lerp(from.lit, goal.lit, share), std::lerp(from.glow, goal.glow, share)};
            update();
        });
    if (!active) {
        QObject::connect(transition_, &QVariantAnimation::finished, breath_, &Pulse::begin);
    }
}

void Keycap::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(look_.glow);
    painter.drawPixmap(0, 0, glow_);
    painter.setOpacity(1);
    const double border = 1 + 0.5 * look_.lit;
    const QRectF cap = QRectF(QPointF(margin(), margin()), cap_);
    // Opaque below the light, so that the glow does not shine through.
    paintBox(painter, cap, {blend(capFill(), background(), look_.lit), {}, cornerRadius});
    paintBox(
        painter, cap,
        {pink(0.24 * look_.lit), blend(whiteAt(0.14), pink(), look_.lit), cornerRadius, border});
}

} // namespace lumetry::views
