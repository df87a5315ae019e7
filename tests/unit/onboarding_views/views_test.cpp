#include "views_test.h"

#include <QAbstractAnimation>
#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QTimeLine>

#include <cstdlib>
#include <optional>

namespace lumetry {
namespace {

class ApplicationEnvironment final : public testing::Environment {
public:
    void SetUp() override { application_.emplace(argc_, argv_.data()); }
    void TearDown() override { application_.reset(); }

private:
    int argc_ = 1;
    std::string name_ = "views_test";
    std::vector<char*> argv_ = {name_.data(), nullptr};
    std::optional<QApplication> application_;
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

} // namespace

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

int distance(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) +
           std::abs(a.blue() - b.blue());
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

void typeKey(QWidget& window, Qt::Key key) {
    QTest::keyClick(window.focusWidget() != nullptr ? window.focusWidget() : &window, key);
}

QRect placeOf(const QWidget& widget) {
    return {widget.mapTo(widget.window(), QPoint(0, 0)), widget.size()};
}

void OnboardingViewsTest::open(OnboardingStep step, const std::string& primary) {
    window->showStep(step, false);
    window->setPrimary(primary, true);
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(QTest::qWaitForWindowActive(widget));
    constexpr int allSettled = 3000;
    passTime(allSettled);
}

QLabel* OnboardingViewsTest::label(const QString& text) const {
    for (QLabel* const candidate : widget->findChildren<QLabel*>()) {
        if (candidate->text() == text && candidate->isVisible()) {
            return candidate;
        }
    }
    return nullptr;
}

QAbstractButton* OnboardingViewsTest::button(const QString& nameOrTitle) const {
    for (QAbstractButton* const candidate : widget->findChildren<QAbstractButton*>()) {
        if (QAccessibleInterface* const accessible =
                QAccessible::queryAccessibleInterface(candidate);
            accessible != nullptr && accessible->role() == QAccessible::Button &&
            accessible->text(QAccessible::Name) == nameOrTitle) {
            return candidate;
        }
    }
    return nullptr;
}

void OnboardingViewsTest::expectNoTextClipped() const {
    int texts = 0;
    for (const QLabel* const text : widget->findChildren<QLabel*>()) {
        if (!text->isVisible() || text->text().isEmpty()) {
            continue;
        }
        ++texts;
        SCOPED_TRACE(text->text().toStdString());
        if (text->wordWrap()) {
            EXPECT_GE(text->height(), text->heightForWidth(text->width()));
        } else {
            EXPECT_GE(text->width(), text->sizeHint().width());
            EXPECT_GE(text->height(), text->sizeHint().height());
        }
        EXPECT_TRUE(text->parentWidget()->rect().contains(text->geometry()));
        for (const QAbstractButton* const other : widget->findChildren<QAbstractButton*>()) {
            EXPECT_FALSE(other->isVisible() && placeOf(*other).intersects(placeOf(*text)));
        }
    }
    EXPECT_GE(texts, 2);
}

} // namespace lumetry
