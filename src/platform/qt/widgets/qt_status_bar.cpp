#include "platform/qt/widgets/qt_status_bar.h"

#include "base/text.h"
#include "platform/linux/system/environment.h"
#include "platform/qt/widgets/notifier_item.h"
#include "platform/qt/widgets/notifier_tray.h"
#include "platform/qt/widgets/template_icon.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QObject>
#include <QPalette>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTimer>

#include <algorithm>
#include <optional>
#include <string>

namespace lumetry {
namespace {

/// Desktops whose bar is dark whatever colours applications have.
bool hasDarkBar() {
    const auto desktops = split(environmentText("XDG_CURRENT_DESKTOP"), ':');
    return std::ranges::any_of(
        desktops, [](const std::string& one) { return one == "GNOME" || one == "Unity"; });
}

bool isAnyPresent(EmbeddingTray& embedding, const NotifierTray& notifier) {
    return notifier.isPresent() || embedding.isPresent();
}

void addRow(QMenu& menu, const MenuItem& item) {
    if (item.separator) {
        menu.addSeparator();
        return;
    }
    // An ampersand would underline what follows it.
    QAction* const row =
        menu.addAction(QString::fromStdString(item.title).replace(u'&', QStringLiteral("&&")));
    row->setEnabled(item.enabled);
    if (!item.keyEquivalent.empty()) {
        row->setShortcut(QKeySequence(
            QStringLiteral("Ctrl+%1").arg(QString::fromStdString(item.keyEquivalent).toUpper())));
        row->setShortcutVisibleInContextMenu(true);
    }
    if (item.action) {
        QObject::connect(row, &QAction::triggered, &menu, item.action);
    }
}

/// One item. Qt settles on a kind of tray with the first icon that is made, so that it is made
/// when there is a tray.
class QtStatusItem final : public QObject, public StatusItem {
public:
    QtStatusItem(EmbeddingTray& embeddingTray, NotifierTray& notifierTray)
        : embeddingTray_(embeddingTray), notifierTray_(notifierTray) {
        notifierTray_.onChange([this] { followTrays(); });
        embeddingChange_ = embeddingTray_.onChange([this] { followTrays(); });
        qGuiApp->installEventFilter(this);
        menu_.installEventFilter(this);
    }
    ~QtStatusItem() override { notifierTray_.onChange({}); }
    QtStatusItem(const QtStatusItem&) = delete;
    QtStatusItem& operator=(const QtStatusItem&) = delete;

    void setImage(const TemplateImage& image) override {
        image_ = image;
        followTrays();
    }

    void setToolTip(const std::string& text) override {
        toolTip_ = QString::fromStdString(text);
        if (icon_) {
            icon_->setToolTip(toolTip_);
        }
    }

    void setMenu(std::vector<MenuItem> menu) override {
        menu_.clear();
        for (const MenuItem& item : menu) {
            addRow(menu_, item);
        }
    }

private:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ApplicationPaletteChange && watched == qGuiApp) {
            tint();
        }
        return watched == &menu_ && event->type() == QEvent::KeyPress &&
               triggerRow(static_cast<const QKeyEvent&>(*event));
    }

    /// Chooses the row of that shortcut: Qt shows shortcuts in a menu but does not listen to those
    /// of one that belongs to no window.
    bool triggerRow(const QKeyEvent& key) {
        const QKeySequence pressed(key.keyCombination());
        for (QAction* const row : menu_.actions()) {
            if (!row->shortcut().isEmpty() && row->shortcut() == pressed) {
                menu_.close();
                row->trigger();
                return true;
            }
        }
        return false;
    }

    void followTrays() {
        if (!isAnyPresent(embeddingTray_, notifierTray_) || !image_) {
            if (icon_) {
                icon_->hide();
            }
            return;
        }
        if (!icon_) {
            makeIcon();
        }
        tint();
        // Said again, it registers with a tray that has restarted.
        icon_->hide();
        icon_->show();
        // Once it has found its place.
        constexpr int settleMilliseconds = 500;
        QTimer::singleShot(settleMilliseconds, this, [this] { tint(); });
    }

    void makeIcon() {
        icon_.emplace();
        icon_->setToolTip(toolTip_);
        icon_->setContextMenu(&menu_);
        QObject::connect(&*icon_, &QSystemTrayIcon::activated, &menu_,
                         [this](QSystemTrayIcon::ActivationReason reason) {
                             // A second click soon after a menu was closed counts as double.
                             if (reason == QSystemTrayIcon::Trigger ||
                                 reason == QSystemTrayIcon::DoubleClick) {
                                 menu_.popup(menuPlace());
                             }
                         });
    }

    /// Beside the icon where its place is known, towards the middle of the screen.
    [[nodiscard]] QPoint menuPlace() {
        const QRect icon = icon_->geometry();
        const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
        if (!icon.isValid() || screen == nullptr) {
            return QCursor::pos();
        }
        const bool below = icon.center().y() < screen->geometry().center().y();
        return {icon.left(), below ? icon.bottom() + 1 : icon.top() - menu_.sizeHint().height()};
    }

    void tint() {
        if (icon_ && image_) {
            icon_->setIcon(templateIcon(*image_, color()));
        }
    }

    [[nodiscard]] QColor color() {
        if (const auto foreground = embeddingTray_.foreground()) {
            return *foreground;
        }
        if (const auto ground = groundBehindIcon()) {
            constexpr int middleGray = 128;
            return qGray(ground->rgb()) < middleGray ? QColor(Qt::white) : QColor(Qt::black);
        }
        return hasDarkBar() ? QColor(Qt::white)
                            : QGuiApplication::palette().color(QPalette::WindowText);
    }

    /// The colour of the bar at the icon's corner, where nothing is drawn.
    [[nodiscard]] std::optional<QColor> groundBehindIcon() const {
        const QRect place = icon_->geometry();
        QScreen* const screen =
            place.isValid() ? QGuiApplication::screenAt(place.center()) : nullptr;
        if (screen == nullptr) {
            return std::nullopt;
        }
        const QPoint corner = place.topLeft() - screen->geometry().topLeft();
        const QImage pixel = screen->grabWindow(0, corner.x(), corner.y(), 1, 1).toImage();
        return pixel.isNull() ? std::nullopt : std::optional(pixel.pixelColor(0, 0));
    }

    EmbeddingTray& embeddingTray_;
    NotifierTray& notifierTray_;
    Token embeddingChange_;
    std::optional<TemplateImage> image_;
    QString toolTip_;
    QMenu menu_;
    std::optional<QSystemTrayIcon> icon_; ///< from the first tray on
};

} // namespace

QtStatusBar::QtStatusBar(EmbeddingTray& embeddingTray)
    : embeddingTray_(embeddingTray), notifierTray_(std::make_unique<NotifierTray>()) {}

QtStatusBar::~QtStatusBar() = default;

bool QtStatusBar::isPresent() {
    return isAnyPresent(embeddingTray_, *notifierTray_);
}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem() {
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
        return std::make_unique<NotifierItem>(*notifierTray_);
    }
    return std::make_unique<QtStatusItem>(embeddingTray_, *notifierTray_);
}

} // namespace lumetry
