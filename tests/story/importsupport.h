#pragma once

#include "story/outline.h"
#include "story/storyformat.h"
#include "story/storylayout.h"
#include "story/storyreader.h"
#include "story/storysupport.h"

// What the tests of reading other formats share: importing a text, and what the editor makes of the file.

/// A tab as one line: of each event how deep it is told, / before a branch and ~ before what is loose, its
/// title, its text behind =, ! for important and . for the end.
inline QString told(const StoryTab &tab)
{
    ExportOptions options;
    options.withBranches = true;
    QStringList all;
    for (const OutlineEntry &entry : outlineOf(tab, options)) {
        QString line = QString::number(entry.depth);
        line += entry.step == OutlineStep::branches  ? QStringLiteral("/")
                : entry.step == OutlineStep::isLoose ? QStringLiteral("~")
                                                     : QString();
        line += entry.event->title;
        if (!entry.event->text().isEmpty())
            line += QLatin1Char('=') + entry.event->text();
        line += entry.event->isImportant ? QStringLiteral("!") : QString();
        line += entry.event->isEnd ? QStringLiteral(".") : QString();
        all << line;
    }
    return all.join(QLatin1Char(' '));
}

/// What came of an import that wrote a file.
struct Imported
{
    CommandResult result;
    QStringList tabs;    // told
    QStringList notes;   // without what each line begins with
    bool isClear = true; // no boxes overlap or leave the canvas
    bool isSound = false;
};

/// Imports `text` under that name, whose suffix says the format.
inline Imported imported(const StoryFolder &folder, const QString &name, const QByteArray &text)
{
    const QString in = folder.put(name, text);
    const QString out = folder.path(name + QStringLiteral(".scene"));
    Imported made;
    made.result =
        runCommand({QStringLiteral("import"), in, QStringLiteral("-o"), out, QStringLiteral("--force")});
    const QStringList errors = made.result.errorLines();
    for (const QString &line : errors)
        made.notes << QString(line).remove(QStringLiteral("fablegrid-story: %1: ").arg(in));
    StoryReader reader(StoryReader::Boxes::measured);
    if (made.result.code != Done || !reader.read(out).isEmpty())
        return made;
    made.isSound = reader.damage().isNone();
    const Story story = reader.story();
    for (const StoryTab &tab : story.tabs)
        made.tabs << told(tab);
    for (const NodegraphScene *scene : reader.scenes()) {
        std::vector<QRectF> boxes;
        for (const Node *node : scene->nodes())
            boxes.push_back(node->sceneBoundingRect());
        made.isClear = made.isClear && StoryLayout::isClear(boxes, scene->sceneRect());
    }
    return made;
}

/// Texts that become stories, as rows of a test: the tabs that they become and what is left out.
class ImportedRows
{
public:
    ImportedRows()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QStringList>("tabs");
        QTest::addColumn<QStringList>("notes");
    }
    void operator()(const char *name, const QString &format, const QByteArray &text, const QStringList &tabs,
                    const QStringList &notes = {}) const
    {
        QTest::newRow(name) << QStringLiteral("in.") + format << text << tabs << notes;
    }
};

/// Of the row that is tested.
inline void checkImported(const StoryFolder &folder)
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, text);
    QFETCH(const QStringList, tabs);
    QFETCH(const QStringList, notes);
    const Imported made = imported(folder, name, text);
    QCOMPARE(made.tabs, tabs);
    QCOMPARE(made.notes, notes);
    QCOMPARE(made.result.output, QByteArray());
    QVERIFY(made.isClear);
    QVERIFY(made.isSound);
}

/// Texts that cannot become stories.
class RefusedRows
{
public:
    RefusedRows()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("trouble");
    }
    void operator()(const char *name, const QByteArray &text, const QString &trouble) const
    {
        QTest::addRow("%s, %d bytes", name, int(text.size())) << QString::fromLatin1(name) << text << trouble;
    }
};

inline void checkRefused(const StoryFolder &folder)
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, text);
    QFETCH(const QString, trouble);
    const Imported made = imported(folder, name, text);
    QCOMPARE(made.result.code, 2);
    QCOMPARE(made.notes, QStringList(trouble));
    QVERIFY(!QFile::exists(folder.path(name + QStringLiteral(".scene"))));
}
