#include "app/applicationpalette.h"
#include "app/displayloss.h"
#include "app/guardedapplication.h"
#include "app/heap.h"
#include "app/mainwindow.h"
#include "app/programend.h"
#include "app/steadylog.h"

#include <QIcon>

int main(int argc, char *argv[])
{
    joinFreedMemory();
    QApplication::setStyle(QStringLiteral("Fusion"));
    ProgramEnd::outliveFailedWrites();
    const SteadyLog log; // before anything can be written: Qt itself may have something to say as it starts
    GuardedApplication application(argc, argv);
    dressApplication();
    // By this name Wayland finds the desktop entry, and with it the icon of the window.
    QGuiApplication::setDesktopFileName(QStringLiteral("example.fablegrid.fablegrid"));

    MainWindow window;
    window.setWindowTitle(MainWindow::tr("Fablegrid v0.1a"));
    window.setWindowIcon(QIcon(QStringLiteral(":/Logo/Assets/Logo/logo - Square (Fill) - App 1.png")));
    window.show();
    window.show();
    const auto unseenWork = [&window] { window.keepWithoutWords(); };
    application.setLastWork(unseenWork);
    const ProgramEnd end([&window] { window.keepForTheEnd(); });
    const DisplayLoss loss(unseenWork);
    const int outcome = QApplication::exec();
    application.setLastWork({});
    return outcome;
}
