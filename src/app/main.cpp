#include "app/applicationpalette.h"
#include "app/mainwindow.h"
#include "app/programend.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    ProgramEnd::outliveFailedWrites();
    const QApplication application(argc, argv);
    dressApplication();
    // By this name Wayland finds the desktop entry, and with it the icon of the window.
    QGuiApplication::setDesktopFileName(QStringLiteral("example.fablegrid.fablegrid"));

    MainWindow window;
    window.setWindowTitle(MainWindow::tr("Fablegrid v0.1a"));
    window.setWindowIcon(QIcon(QStringLiteral(":/Logo/Assets/Logo/logo - Square (Fill) - App 1.png")));
    window.show();
    window.show();
    const ProgramEnd end([&window] { window.keepForTheEnd(); });
    return QApplication::exec();
}
