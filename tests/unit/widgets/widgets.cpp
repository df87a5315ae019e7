#include "unit/widgets/widgets.h"

#include <QAbstractAnimation>
#include <QAccessible>
#include <QTest>
#include <QTimeLine>

namespace lumetry {

void passTime(QWidget& widget, int milliseconds) {
    for (auto* const swing : widget.findChildren<QTimeLine*>()) {
        if (swing->state() != QTimeLine::NotRunning) {
            swing->setCurrentTime(milliseconds);
        }
    }
    for (auto* const animation : widget.findChildren<QAbstractAnimation*>()) {
        if (animation->state() == QAbstractAnimation::Running) {
            animation->setCurrentTime(milliseconds);
        }
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void openSettled(OnboardingWindow& window, OnboardingStep step, const std::string& primary) {
    window.showStep(step, false);
    window.setPrimary(primary, true);
    window.makeKeyAndOrderFront();
    QWidget* const widget = windowTitled(QStringLiteral("Welcome to Lumetry"));
    ASSERT_TRUE(QTest::qWaitForWindowActive(widget));
    constexpr int allSettled = 3000;
    passTime(*widget, allSettled);
}

QWidget* windowTitled(const QString& title) {
    for (QWidget* const candidate : QApplication::topLevelWidgets()) {
        if (candidate->windowTitle() == title) {
            return candidate;
        }
    }
    ADD_FAILURE() << "no window with the title " << title.toStdString();
    return nullptr;
}

QRect placeOf(const QWidget& widget) {
    return {widget.mapTo(widget.window(), QPoint(0, 0)), widget.size()};
}

QAbstractButton* buttonNamed(const QWidget& window, const QString& name) {
    for (QAbstractButton* const candidate : window.findChildren<QAbstractButton*>()) {
        if (QAccessibleInterface* const accessible =
                QAccessible::queryAccessibleInterface(candidate);
            accessible != nullptr && accessible->role() == QAccessible::Button &&
            accessible->text(QAccessible::Name) == name) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace lumetry
