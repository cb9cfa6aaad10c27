#include "app/applicationpalette.h"
#include "app/mainwindow.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication application(argc, argv);
    QApplication::setPalette(applicationPalette());

    MainWindow window;
    window.setWindowTitle(QStringLiteral("Fablegrid v0.1a"));
    window.setWindowIcon(QIcon(QStringLiteral(":/Logo/Assets/Logo/logo - Square (Fill) - App 1.png")));
    window.show();
    window.show();
    return QApplication::exec();
}
