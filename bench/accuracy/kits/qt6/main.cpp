// A window of Qt widgets that says where its elements are and how they are styled.
//
//   lumetry_kit_qt6 PLAN

#include "css.h"
#include "statement.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStyleOptionButton>
#include <QTableWidget>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace lumetry::accuracy;
using Json = nlohmann::json;

Statement statement;
/// What is to be stated once everything has its place.
std::vector<std::function<void()>> statements;

Json placeIn(const QWidget* widget, const QRect& rect) {
    const QPoint corner = widget->mapTo(widget->window(), rect.topLeft());
    return {corner.x(), corner.y(), rect.width(), rect.height()};
}

Json placeOf(const QWidget* widget) {
    return placeIn(widget, widget->rect());
}

Json& state(const Planned& element, const QWidget* widget,
            std::initializer_list<const char*> kept) {
    Json& stated = statement.add(element.at("id"), element, kept);
    stated["frame"] = placeOf(widget);
    return stated;
}

QString textOf(const Planned& element, const std::string& name) {
    return QString::fromStdString(element.at(name));
}

/// Of fonts in pixels Qt would tell no size.
void setStyle(QWidget* widget, const std::string& declarations) {
    widget->setStyleSheet(QString::fromStdString(declarations));
}

QWidget* label(const Planned& element) {
    auto* const widget = new QLabel(textOf(element, "text"));
    setStyle(widget, fontOf(element));
    statements.emplace_back([=] {
        state(element, widget, {"family", "size", "weight", "color", "fill"});
    });
    return widget;
}

QWidget* button(const Planned& element) {
    auto* const widget = new QPushButton(textOf(element, "text"));
    setStyle(widget, fontOf(element) + surfaceOf(element));
    statements.emplace_back([=] { state(element, widget, {"color", "fill", "radius"}); });
    return widget;
}

constexpr auto styled = {"family", "size", "weight", "color", "fill", "radius"};

void style(const Planned& element, QWidget* widget) {
    setStyle(widget, fontOf(element) + surfaceOf(element));
    widget->setFixedWidth(number(element, "width"));
}

QWidget* entry(const Planned& element) {
    auto* const widget = new QLineEdit(textOf(element, "text"));
    style(element, widget);
    statements.emplace_back([=] { state(element, widget, styled); });
    return widget;
}

QWidget* area(const Planned& element) {
    auto* const widget = new QTextEdit(textOf(element, "text"));
    style(element, widget);
    widget->setFixedHeight(number(element, "height"));
    widget->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    statements.emplace_back([=] {
        Json& stated = state(element, widget, styled);
        stated["text"] = placeOf(widget->viewport());
        // Of other weights it tells which of these is nearest.
        const int weight = number(element, "weight");
        if (weight != QFont::Normal && weight != QFont::Bold) {
            stated.erase("weight");
        }
    });
    return widget;
}

/// What counts is where it can be clicked.
QWidget* choice(const Planned& element, QAbstractButton* widget, QStyle::SubElement clicked) {
    statements.emplace_back([=] {
        QStyleOptionButton option;
        option.initFrom(widget);
        option.text = widget->text();
        Json& stated = statement.add(element.at("id"), element, {});
        stated["frame"] =
            placeIn(widget, widget->style()->subElementRect(clicked, &option, widget));
        stated["fill"] = "#ffffff";
    });
    return widget;
}

QWidget* check(const Planned& element) {
    return choice(element, new QCheckBox(textOf(element, "text")), QStyle::SE_CheckBoxClickRect);
}

QWidget* radio(const Planned& element) {
    return choice(element, new QRadioButton(textOf(element, "text")),
                  QStyle::SE_RadioButtonClickRect);
}

QWidget* plain(const Planned& element, QWidget* widget) {
    statements.emplace_back([=] { state(element, widget, {}); });
    return widget;
}

QWidget* spin(const Planned& element) {
    return plain(element, new QSpinBox);
}

QComboBox* comboBox() {
    auto* const widget = new QComboBox;
    widget->addItems({"Monthly", "Yearly"});
    return widget;
}

QWidget* popup(const Planned& element) {
    return plain(element, comboBox());
}

QWidget* combo(const Planned& element) {
    QComboBox* const widget = comboBox();
    widget->setEditable(true);
    statements.emplace_back(
        [=] { state(element, widget, {})["text"] = placeOf(widget->lineEdit()); });
    return widget;
}

QWidget* menubar(const Planned& element) {
    auto* const bar = new QMenuBar;
    QMenu* const menu = bar->addMenu(textOf(element, "text"));
    menu->addAction("Entry");
    statements.emplace_back([=] {
        statement.add(element.at("id"), element, {})["frame"] =
            placeIn(bar, bar->actionGeometry(menu->menuAction()));
    });
    return bar;
}

constexpr int belowItems = 24; ///< room in which a list is hit and none of its items

QWidget* list(const Planned& element) {
    constexpr int itemHeight = 26;
    auto* const widget = new QListWidget;
    const int count = number(element, "items");
    for (int n = 0; n < count; ++n) {
        auto* const item = new QListWidgetItem(QString("Item %1").arg(n), widget);
        item->setSizeHint({80, itemHeight});
        item->setHidden(n == number(element, "hidden"));
    }
    widget->setFixedSize(120, count * itemHeight + belowItems);
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {});
        for (int n = 0; n < count; ++n) {
            if (!widget->item(n)->isHidden()) {
                stated["items"].push_back(
                    placeIn(widget->viewport(), widget->visualItemRect(widget->item(n))));
            }
        }
        stated["point"] = pointAtEnd(stated["frame"]);
    });
    return widget;
}

void addItems(const Planned& element, QWidget* widget, QBoxLayout::Direction direction) {
    const int padding = number(element, "padding");
    auto* const layout = new QBoxLayout(direction, widget);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(number(element, "gap"));
    for (int n = 0; n < number(element, "items"); ++n) {
        auto* const item = new QLabel(QString("Item %1").arg(n));
        item->setFixedSize(64, 20);
        layout->addWidget(item);
        item->setVisible(n != number(element, "hidden"));
    }
    const std::string id = element.at("id");
    widget->setObjectName(QString::fromStdString(id));
    widget->setAttribute(Qt::WA_StyledBackground);
    widget->setStyleSheet("#" + widget->objectName() + " { background: " + textOf(element, "fill") +
                          "; border: none; border-radius: " + textOf(element, "radius") +
                          "px; } QLabel { color: " + textOf(element, "color") + "; }");
    statements.emplace_back([=] {
        Json& stated = state(element, widget, {"fill", "radius"});
        for (const QLabel* item : widget->findChildren<QLabel*>()) {
            if (item->isVisible()) {
                stated["items"].push_back(placeOf(item));
            }
        }
    });
}

QWidget* box(const Planned& element) {
    auto* const widget = new QWidget;
    addItems(element, widget, QBoxLayout::TopToBottom);
    return widget;
}

QWidget* row(const Planned& element) {
    auto* const widget = new QWidget;
    addItems(element, widget, QBoxLayout::LeftToRight);
    return widget;
}

QWidget* panel(const Planned& element) {
    auto* const widget = new QFrame;
    addItems(element, widget, QBoxLayout::TopToBottom);
    return widget;
}

void stateTable(const Planned& element, const QTableWidget* widget) {
    Json& stated = state(element, widget, {});
    for (int n = 0; n < widget->rowCount(); ++n) {
        const QRect row = widget->visualItemRect(widget->item(n, 0)) |
                          widget->visualItemRect(widget->item(n, widget->columnCount() - 1));
        stated["items"].push_back(placeIn(widget->viewport(), row));
    }
    stated["point"] = pointAtEnd(stated["frame"]);
}

QWidget* table(const Planned& element) {
    constexpr int rowHeight = 26;
    constexpr int headerHeight = 26;
    auto* const widget = new QTableWidget(number(element, "rows"), number(element, "columns"));
    for (int n = 0; n < widget->rowCount() * widget->columnCount(); ++n) {
        widget->setItem(n / widget->columnCount(), n % widget->columnCount(),
                        new QTableWidgetItem("Cell text"));
    }
    widget->verticalHeader()->hide();
    widget->verticalHeader()->setDefaultSectionSize(rowHeight);
    widget->horizontalHeader()->setDefaultSectionSize(80);
    widget->horizontalHeader()->setFixedHeight(headerHeight);
    widget->setFixedSize(260, headerHeight + widget->rowCount() * rowHeight + belowItems);
    statements.emplace_back([=] { stateTable(element, widget); });
    return widget;
}

QWidget* image(const Planned& element) {
    QPixmap picture(number(element, "width"), number(element, "height"));
    picture.fill(QColor(textOf(element, "fill")));
    auto* const widget = new QLabel;
    widget->setPixmap(picture);
    statements.emplace_back([=] { state(element, widget, {"fill"}); });
    return widget;
}

using Maker = QWidget* (*)(const Planned&);
const std::map<std::string, Maker> makers = {
    {"label", label}, {"button", button},   {"entry", entry}, {"spin", spin},
    {"area", area},   {"check", check},     {"radio", radio}, {"popup", popup},
    {"combo", combo}, {"menubar", menubar}, {"list", list},   {"box", box},
    {"row", row},     {"panel", panel},     {"table", table}, {"image", image}};

} // namespace

int main(int argc, char** argv) {
    constexpr int patienceMs = 800; // for the window manager
    const QApplication application(argc, argv);
    QApplication::setStyle("Fusion");
    QWidget window;
    window.setWindowTitle("Accuracy");
    window.setFixedSize(1260, 900);
    QPalette palette = window.palette();
    palette.setColor(QPalette::Window, Qt::white);
    window.setPalette(palette);
    for (const Planned& element : readPlan(argv[1])) {
        const auto maker = makers.find(element.at("what"));
        if (maker != makers.end()) {
            QWidget* const widget = maker->second(element);
            widget->setParent(&window);
            widget->adjustSize();
            widget->move(number(element, "x"), number(element, "y"));
            widget->setFocusPolicy(Qt::NoFocus);
        }
    }
    window.show();
    QTimer::singleShot(patienceMs, &window, [&] {
        for (const auto& state : statements) {
            state();
        }
        statement.print(window.devicePixelRatioF());
    });
    return QApplication::exec();
}
