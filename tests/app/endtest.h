#pragma once

#include "app/programtest.h"
#include "app/windowsupport.h"
#include "faults/savedocuments.h"

#include <QProcess>

/// A test of how the program ends, and of what is kept then. Each case is a process of its own.
class EndTest : public WindowTest
{
    Q_OBJECT

protected:
    static constexpr int patience = 60000; // milliseconds, for the slowest of machines

    QString story() const { return path(QStringLiteral("story.scene")); }
    QString kept() const { return path(QStringLiteral("Documents/Fablegrid/Kept")); }
    /// The next line that it prints.
    static QString line(QProcess &process)
    {
        const auto hasSpoken = [&process] {
            return process.canReadLine() || process.state() == QProcess::NotRunning;
        };
        return QTest::qWaitFor(hasSpoken, patience) && process.canReadLine()
                   ? QString::fromLatin1(process.readLine()).trimmed()
                   : QStringLiteral("nothing");
    }
    /// Starts this test program once more and waits until it says that it is ready.
    static void startAgain(QProcess &process, const QStringList &arguments)
    {
        process.start(QCoreApplication::applicationFilePath(), arguments);
        const QString said = line(process);
        QVERIFY2(said == QStringLiteral("ready"), process.readAllStandardError().constData());
    }
    static bool hasEnded(QProcess &process)
    {
        return QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, patience);
    }
    static void checkCode(QProcess &process, int code)
    {
        QVERIFY(hasEnded(process));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), code);
    }
    /// So many copies have been kept for the end, each of them this document, if there is one.
    void checkKept(int copies, const QByteArray &document = {}) const
    {
        const QStringList files = filesBelow(kept());
        QCOMPARE(files.size(), copies);
        for (const QString &file : files) {
            QVERIFY2(file.endsWith(QStringLiteral("_end.scene")), qPrintable(file));
            QVERIFY(document.isEmpty() || readFile(kept() + QLatin1Char('/') + file) == document);
        }
    }
};
