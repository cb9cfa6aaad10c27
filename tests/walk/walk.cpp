#include "walk/walk.h"

#include "walk/screencheck.h"

#include <algorithm>
#include <iterator>

void Walk::start(const QString &name)
{
    program = std::make_unique<Program>(desktop, name);
    QVERIFY(program->start(variables));
    QVERIFY(window.measure());
    QVERIFY(window.entries().isEmpty());
    QVERIFY(window.events().isEmpty());
}

void Walk::end(const QString &answerKeys)
{
    QVERIFY(window.askToClose());
    QVERIFY(window.answer(answerKeys));
    QVERIFY(program->endsWell());
    checkLog();
}

void Walk::checkLog() const
{
    QVERIFY(!program->logLines().isEmpty());
    QCOMPARE(program->strangeLines(), QStringList());
}

void Walk::checkScreen() const
{
    const QString fault = ScreenCheck(desktop, window).fault();
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
}

void Walk::tidyUp()
{
    if (QTest::currentTestFailed()) {
        QString name = QStringLiteral("failed-") + QLatin1String(QTest::currentTestFunction());
        if (const char *row = QTest::currentDataTag())
            name += QLatin1Char('-') + QString::fromLatin1(row).replace(QLatin1Char(' '), QLatin1Char('-'));
        desktop.keepScreenshot(name + QStringLiteral(".png"));
        qInfo() << "What the screen showed:" << Desktop::artefacts().filePath(name + QStringLiteral(".png"));
        if (program)
            qInfo().noquote() << "The program:" << program->fate() << "- its log:\n"
                              << program->logLines().join(QLatin1Char('\n'));
    }
    program.reset();
    flushDeferredDeletes();
}

void Walk::addChain(int count)
{
    for (int i = 1; i <= count; ++i) {
        QVERIFY(window.key(QStringLiteral("ctrl+shift+a")));
        QVERIFY(window.comesToShowEntries(i));
    }
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+f")));
    QCOMPARE(window.framedEvents(count).size(), count);
}

void Walk::saveFirst(const QString &path)
{
    QVERIFY(window.key(QStringLiteral("ctrl+s")));
    giveNewFile(path);
}

void Walk::giveNewFile(const QString &path) const
{
    QVERIFY(!QFile::exists(path));
    QVERIFY(window.giveFile(QStringLiteral("Save Scene"), path));
    QVERIFY(eventually([&] { return QFile::exists(path); }));
}

// A file that is written anew tells that all keys before this one have been taken.
SavedScene Walk::savedAgain(const QString &path) const
{
    QFile::remove(path);
    if (!window.key(QStringLiteral("ctrl+s")) || !eventually([&] { return QFile::exists(path); }))
        return {{}, QStringLiteral("Nothing was saved")};
    return readScene(path);
}

QStringList Walk::linesOfCommands() const
{
    static const QRegularExpression saving(QRegularExpression::anchoredPattern(QStringLiteral(
        "Tabs to save \\d+|Nodes to save \\d+|Serializing node|Saving event data|Autosaved scene to: .*")));
    QStringList lines;
    const QStringList all = program->logLines();
    std::copy_if(all.begin(), all.end(), std::back_inserter(lines),
                 [](const QString &line) { return !saving.match(line).hasMatch(); });
    return lines;
}

int Walk::logged(const QStringList &lines) const
{
    const QStringList all = program->logLines();
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](const QString &line) { return lines.contains(line); }));
}

QString toText(const SavedScene &scene)
{
    QString text = scene.problem;
    for (QList<SavedEvent> tab : scene.tabs) {
        std::sort(tab.begin(), tab.end(),
                  [](const SavedEvent &a, const SavedEvent &b) { return a.index < b.index; });
        text += QStringLiteral("[\n");
        for (const SavedEvent &event : qAsConst(tab))
            text += QStringLiteral("  %1 after %2 at %3,%4 end %5 important %6: \"%7\" \"%8\"\n")
                        .arg(event.index)
                        .arg(event.upstream)
                        .arg(event.x)
                        .arg(event.y)
                        .arg(event.endOfStory)
                        .arg(event.important)
                        .arg(event.title, event.description);
        text += QStringLiteral("]\n");
    }
    return text;
}
