#include "views_test.h"

#include <QTest>

namespace lumetry {
namespace {

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

} // namespace

void typeKey(QWidget& window, Qt::Key key) {
    QTest::keyClick(window.focusWidget() != nullptr ? window.focusWidget() : &window, key);
}

QLabel* OnboardingViewsTest::label(const QString& text) const {
    for (QLabel* const candidate : visibleWidgets<QLabel>(*widget)) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace lumetry
