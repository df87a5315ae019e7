// A window of Qt widgets that says where each of them is and how it is set: one JSON object a line
// on standard output, whenever the window has been shown in another place.
//
//   lumetry_qt_form

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMoveEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QTimer>
#include <QVBoxLayout>

#include <iostream>

namespace {

/// What the widgets are asked about has a name.
template<typename Widget>
Widget* named(const char* name, Widget* widget) {
    widget->setObjectName(name);
    return widget;
}

QFont pointFont(const char* family, int points, QFont::Weight weight) {
    return {family, points, weight};
}

QWidget* makeGroup() {
    auto* group = named("group", new QGroupBox("Delivery"));
    auto* row = new QHBoxLayout(group);
    row->setContentsMargins(20, 20, 20, 20);
    row->setSpacing(12);
    for (const char* text : {"Standard", "Express", "Pick up"}) {
        auto* button = named(text, new QPushButton(text));
        button->setFixedSize(120, 44);
        row->addWidget(button);
    }
    return group;
}

QWidget* makeNote() {
    auto* note = named("note", new QPlainTextEdit("Two lines\nof a note"));
    note->setFont(pointFont("DejaVu Serif", 15, QFont::Bold));
    note->setFixedHeight(90);
    return note;
}

QWidget* makeList() {
    auto* list = named("list", new QListWidget);
    for (const char* text : {"One", "Two", "Three", "Four"}) {
        (new QListWidgetItem(text, list))->setSizeHint({0, 26});
    }
    list->setSpacing(3);
    list->setFixedHeight(150);
    return list;
}

class CheckBox final : public QCheckBox {
public:
    using QCheckBox::QCheckBox;

    /// The box and its text: the rest of the widget is no part of it to whoever uses it.
    [[nodiscard]] QRect activeRect() const {
        QStyleOptionButton option;
        initStyleOption(&option);
        return style()->subElementRect(QStyle::SE_CheckBoxClickRect, &option, this);
    }
};

class Form final : public QWidget {
public:
    Form() {
        setObjectName("form");
        setWindowTitle("Qt form");
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(24, 24, 24, 24);
        column->setSpacing(16);
        auto* label = named("label", new QLabel("Quarterly prices"));
        label->setFont(pointFont("DejaVu Sans", 21, QFont::Normal));
        auto* choice = named("choice", new QComboBox);
        choice->addItems({"Monthly", "Yearly"});
        for (QWidget* widget :
             {static_cast<QWidget*>(label), makeGroup(),
              static_cast<QWidget*>(named("line", new QLineEdit("Ada Lovelace"))), makeNote(),
              static_cast<QWidget*>(named("check", new CheckBox("Gift wrap"))),
              static_cast<QWidget*>(choice), makeList()}) {
            column->addWidget(widget);
        }
        settled_.setSingleShot(true);
        settled_.setInterval(100);
        connect(&settled_, &QTimer::timeout, this, &Form::printTruth);
    }

protected:
    void moveEvent(QMoveEvent* event) override {
        QWidget::moveEvent(event);
        settled_.start();
    }
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        settled_.start();
    }

private:
    static QJsonObject truthOf(const QWidget& widget) {
        const auto* check = dynamic_cast<const CheckBox*>(&widget);
        const QRect rect = check ? check->activeRect() : widget.rect();
        const QPoint origin = widget.mapToGlobal(rect.topLeft());
        const QFontInfo font(widget.font());
        return {{"x", origin.x()},         {"y", origin.y()},         {"width", rect.width()},
                {"height", rect.height()}, {"family", font.family()}, {"pixels", font.pixelSize()},
                {"weight", font.weight()}};
    }

    void printTruth() {
        QJsonObject truth = {{objectName(), truthOf(*this)}};
        for (const QWidget* widget : findChildren<QWidget*>()) {
            truth[widget->objectName()] = truthOf(*widget);
        }
        std::cout << QJsonDocument(truth).toJson(QJsonDocument::Compact).toStdString() << std::endl;
    }

    QTimer settled_;
};

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    Form form;
    form.show();
    return QApplication::exec();
}
