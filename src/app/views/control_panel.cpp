#include "app/views/control_panel.h"

#include "onboarding/views/buttons.h"
#include "onboarding/views/centering.h"
#include "onboarding/views/style.h"
#include "platform/qt/widgets/template_icon.h"

#include <QApplication>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

#include <utility>

namespace lumetry {
namespace {

using namespace views;

constexpr QSize panelSize = {360, 196};

class ControlPanel final : public QWidget {
public:
    ControlPanel(ControlPanelActions actions, const TemplateImage& icon)
        : actions_(std::move(actions)) {
        setWindowTitle(QStringLiteral("Lumetry"));
        // A tool has no place in the task bar.
        setWindowFlags(Qt::Tool | Qt::WindowStaysOnTopHint | Qt::WindowTitleHint |
                       Qt::WindowCloseButtonHint);
        setFixedSize(panelSize);
        QPalette dark;
        dark.setColor(QPalette::Window, background());
        setPalette(dark);
        setAutoFillBackground(true);

        auto* const stack = new QVBoxLayout(this);
        stack->setSpacing(10);
        stack->addStretch();
        stack->addWidget(makeIcon(icon), 0, Qt::AlignHCenter);
        stack->addWidget(makeLabel(QStringLiteral("Lumetry is running"),
                                   systemFont(16, FontWeight::semibold), whiteAt(1), this),
                         0, Qt::AlignHCenter);
        stack->addWidget(makeSubtitle(), 0, Qt::AlignHCenter);
        stack->addLayout(makeButtons());
        stack->addStretch();
    }

    /// Return starts, wherever the keyboard was before.
    void focusStart() { start_->setFocus(); }

private:
    QLabel* makeIcon(const TemplateImage& icon) {
        constexpr int side = 30;
        const double ratio = devicePixelRatioF();
        QPixmap picture(QSize(side, side) * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paintTemplateImage(painter, icon, {0, 0, side, side}, pink());
        painter.end();
        auto* const label = new QLabel(this);
        label->setPixmap(picture);
        label->setAccessibleName(QStringLiteral("Lumetry"));
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        return label;
    }

    QLabel* makeSubtitle() {
        constexpr int mostWidth = 300;
        auto* const label =
            makeLabel(QStringLiteral("It lives in your menu bar. Press ⌃⇧M anywhere to measure."),
                      systemFont(12), whiteAt(0.55), this);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignCenter);
        label->setFixedWidth(mostWidth);
        label->setFixedHeight(label->heightForWidth(mostWidth));
        return label;
    }

    QLayout* makeButtons() {
        auto* const quit = makeButton(QStringLiteral("Quit Lumetry"), whiteAt(0.14));
        QObject::connect(quit, &QPushButton::clicked, this, [this] { actions_.quitFromPanel(); });
        auto* const start = makeButton(QStringLiteral("Start inspecting"), pink());
        start_ = start;
        QObject::connect(start, &QPushButton::clicked, this, [this] { actions_.startFromPanel(); });
        auto* const row = new QHBoxLayout;
        row->setSpacing(10);
        row->addStretch();
        row->addWidget(quit);
        row->addWidget(start);
        row->addStretch();
        return row;
    }

    FlatButton* makeButton(const QString& title, const QColor& fill) {
        constexpr int height = 28;
        constexpr int padding = 14;
        constexpr double cornerRadius = 6;
        auto* const button = new FlatButton(this);
        button->setText(title);
        button->setFont(systemFont(13));
        button->setLook({{fill, {}, cornerRadius}, whiteAt(1)});
        button->setFixedSize(QFontMetrics(button->font()).horizontalAdvance(title) + 2 * padding,
                             height);
        return button;
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            start_->click();
        } else {
            QWidget::keyPressEvent(event);
        }
    }

    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && windowHandle() != nullptr) {
            windowHandle()->startSystemMove();
        }
    }

    ControlPanelActions actions_;
    QPushButton* start_ = nullptr;
};

class QtControlPanelWindow final : public ControlPanelWindow {
public:
    QtControlPanelWindow(ControlPanelActions actions, const TemplateImage& icon)
        : panel_(std::move(actions), icon) {}

    void center() override { centerOnScreen(panel_); }
    void makeKeyAndOrderFront() override {
        panel_.focusStart();
        panel_.show();
        panel_.raise();
        panel_.activateWindow();
    }
    void orderOut() override { panel_.hide(); }

private:
    ControlPanel panel_;
};

} // namespace

std::unique_ptr<ControlPanelWindow> makeControlPanel(ControlPanelActions actions,
                                                     const TemplateImage& icon) {
    return std::make_unique<QtControlPanelWindow>(std::move(actions), icon);
}

} // namespace lumetry
