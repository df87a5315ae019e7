// The smallest Qt program that shows a tray item: what any other is held against.

#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::black);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.show();
    return QApplication::exec();
}
