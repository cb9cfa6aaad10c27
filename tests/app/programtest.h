#pragma once

#include "app/mainwindow.h"
#include "support/testsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>
#include <vector>

/// A home folder that lasts as long as this object, so that no test reads or writes the user's own files.
class PrivateHome
{
public:
    PrivateHome()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        for (const auto &[name, folder] :
             {std::pair("HOME", ""), std::pair("XDG_CONFIG_HOME", "/config"),
              std::pair("XDG_DATA_HOME", "/data"), std::pair("XDG_CACHE_HOME", "/cache")}) {
            former.emplace_back(name, qgetenv(name));
            qputenv(name, (dir.path() + QLatin1String(folder)).toLocal8Bit());
        }
    }
    ~PrivateHome()
    {
        for (const auto &[name, value] : former) {
            if (value.isNull())
                qunsetenv(name);
            else
                qputenv(name, value);
        }
    }
    PrivateHome(const PrivateHome &) = delete;
    PrivateHome &operator=(const PrivateHome &) = delete;

    QString filePath(const QString &name) const { return dir.filePath(name); }

private:
    QTemporaryDir dir;
    std::vector<std::pair<const char *, QByteArray>> former;
};

/// What the offscreen platform says of itself whenever a dialog comes up.
inline const QString platformLine = QStringLiteral("This plugin does not support propagateSizeHints()");

/// As failOnWarnings(), except for the platform's own line.
inline void failOnWarningsOfTheProgram()
{
    QTest::failOnWarning(
        QRegularExpression(QStringLiteral("^(?!%1$)").arg(QRegularExpression::escape(platformLine))));
}

/// As TestCase, for what opens windows.
class ProgramTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { failOnWarningsOfTheProgram(); }
    void cleanup() { flushDeferredDeletes(); }
};

/// A ProgramTest whose functions have a home each.
class HomeTest : public QObject
{
    Q_OBJECT

protected:
    /// What each function finds in its home.
    virtual void prepare() {}
    QString path(const QString &name) const { return home->filePath(name); }

    std::unique_ptr<PrivateHome> home;

private slots:
    void init()
    {
        failOnWarningsOfTheProgram();
        home = std::make_unique<PrivateHome>();
        prepare();
    }
    void cleanup()
    {
        flushDeferredDeletes();
        home.reset();
    }
};

/// A HomeTest with a window, if prepare() makes one; it goes before the home.
class WindowTest : public HomeTest
{
    Q_OBJECT

protected:
    void makeWindow() { window = std::make_unique<MainWindow>(); }
    void showWindow()
    {
        makeWindow();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }

    std::unique_ptr<MainWindow> window;

private slots:
    void cleanup()
    {
        window.reset();
        flushDeferredDeletes();
        home.reset();
    }
};
