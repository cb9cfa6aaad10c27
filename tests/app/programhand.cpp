#include <QAction>
#include <QApplication>
#include <QDebug>
#include <QGenericPlugin>
#include <QMainWindow>
#include <QPointer>
#include <QSessionManager>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constexpr int linesOfTheLog = 5000; // more than a pipe takes

QPointer<QAction> findAdding()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        if (auto *adding = window->findChild<QAction *>(QStringLiteral("actionAdd_Event")))
            return adding;
    }
    return {};
}

/// As a session manager does through the platform. Nobody but the application can make one, and nobody looks
/// at this one.
void endSession()
{
    QObject manager;
    QMetaObject::invokeMethod(qGuiApp, "commitDataRequest",
                              Q_ARG(QSessionManager &, reinterpret_cast<QSessionManager &>(manager)));
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qGuiApp, &quit);
}

void act(const QString &what)
{
    if (what == QStringLiteral("talk")) {
        for (int i = 0; i < linesOfTheLog; ++i)
            qInfo() << "Line" << i << "of many";
    }
    std::puts("ready");
    std::fflush(stdout);
    if (what == QStringLiteral("exit"))
        std::exit(3);
    if (what == QStringLiteral("quit"))
        QCoreApplication::exit();
    if (what == QStringLiteral("session"))
        endSession();
    if (what == QStringLiteral("memory"))
        throw std::bad_alloc();
}

/// Adds an event as soon as the program runs, and then does what it is told.
class Hand : public QTimer
{
public:
    explicit Hand(const QString &what)
    {
        callOnTimeout(this, [this, what] {
            // By then main() has made all that it makes.
            const QPointer<QAction> adding =
                QThread::currentThread()->loopLevel() > 0 ? findAdding() : nullptr;
            if (!adding)
                return;
            stop();
            adding->trigger();
            act(what);
        });
        start(1);
    }
};

} // namespace

/// Does within the program, the very one that users start, what nobody can do from outside without a screen.
/// Qt loads it if the environment says so.
class ProgramHand : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "programhand.json")

public:
    QObject *create(const QString &, const QString &what) override { return new Hand(what); }
};

#include "programhand.moc"
