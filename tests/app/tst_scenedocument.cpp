#include "app/storystage.h"

// Whatever can go wrong with files is tried through the window; here is what the document itself answers for.

class tst_SceneDocument : public ProgramTest
{
    Q_OBJECT

private slots:
    void noTabsAreFourBytes();
    void whatIsSavedIsOpened();
    void openedFileBecomesTheDocument();
    void savingElsewhereLeavesThePath();
    void fileThatCannotBeOpenedChangesNothing();
    void openingListsTheStoryOnce();
    void damageOfAllTabsIsToldTogether();
    void saveThatIsGivenUpLeavesNoFile();

private:
    QString file(const char *name) const { return folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir folder;
};

void tst_SceneDocument::noTabsAreFourBytes()
{
    const StoryStage stage;
    QCOMPARE(stage.document.bytes(), QByteArray(4, '\0'));
    QVERIFY(stage.document.path().isEmpty());
}

void tst_SceneDocument::whatIsSavedIsOpened()
{
    StoryStage stage;
    stage.tabs.add(2);
    addChain(stage.scene(0), 3);
    addChain(stage.scene(1), 1);
    const QByteArray bytes = stage.document.bytes();
    stage.document.saveTo(file("two.scene"));
    QCOMPARE(readFile(file("two.scene")), bytes);
    stage.document.clear();
    QCOMPARE(stage.document.bytes(), QByteArray(4, '\0'));
    stage.document.loadFrom(file("two.scene"));
    QCOMPARE(stage.tabs.views().size(), std::size_t(2));
    QCOMPARE(stage.document.bytes().toHex(), bytes.toHex());
}

void tst_SceneDocument::openedFileBecomesTheDocument()
{
    StoryStage stage;
    stage.document.setPath(file("former.scene"));
    writeFile(file("opened.scene"), documentBytes({{}}));
    stage.document.loadFrom(file("opened.scene"));
    QCOMPARE(stage.document.path(), file("opened.scene"));
    stage.document.clear();
    QVERIFY(stage.document.path().isEmpty());
}

void tst_SceneDocument::savingElsewhereLeavesThePath()
{
    StoryStage stage;
    stage.document.setPath(file("here.scene"));
    stage.document.saveTo(file("there.scene"));
    QCOMPARE(stage.document.path(), file("here.scene"));
    QVERIFY(QFile::exists(file("there.scene")));
    QVERIFY(!QFile::exists(file("here.scene")));
}

void tst_SceneDocument::fileThatCannotBeOpenedChangesNothing()
{
    StoryStage stage;
    stage.tabs.add();
    addChain(stage.scene(0), 2);
    stage.document.setPath(file("here.scene"));
    const QByteArray bytes = stage.document.bytes();
    QTest::ignoreMessage(QtWarningMsg, "Couldn't open file for reading.");
    stage.document.loadFrom(file("nowhere.scene"));
    QCOMPARE(stage.document.bytes(), bytes);
    QCOMPARE(stage.document.path(), file("here.scene"));
}

void tst_SceneDocument::openingListsTheStoryOnce()
{
    StoryStage stage;
    stage.tabs.add();
    addChain(stage.scene(0), 50);
    stage.document.saveTo(file("long.scene"));
    LogCapture log;
    stage.document.loadFrom(file("long.scene"));
    QCOMPARE(stage.panel.ovNodes().size(), std::size_t(50));
    // Once for the emptied document, once for the opened one.
    QCOMPARE(log.lines().filter(QStringLiteral("No of ovnodes now")).size(), 2);
}

// Each tab had lines of its own, and numbers of its own up to which connections are named.
void tst_SceneDocument::damageOfAllTabsIsToldTogether()
{
    constexpr int events = 8;
    std::vector<Record> tab;
    for (int i = 0; i < events; ++i)
        tab.push_back({QStringLiteral("Chapter"), QPointF(500.0 * i, 0), i, i}); // each feeds itself
    tab.push_back({QStringLiteral("Chapter"), QPointF(0, 500), 0, -1});
    QVERIFY(writeFile(file("damaged.scene"), documentBytes({tab, tab, tab})));
    const QString start = QStringLiteral("Damaged scene file: \"%1\" has ").arg(file("damaged.scene"));
    const QRegularExpression named(QLatin1Char('^') + QRegularExpression::escape(start) +
                                   QStringLiteral("a connection that closes a cycle, left out: "));
    for (int i = 0; i < 20; ++i)
        QTest::ignoreMessage(QtWarningMsg, named);
    for (const QString &counted : {QStringLiteral("4 more connections that close a cycle, left out"),
                                   QStringLiteral("3 events without an index of their own, given new ones")})
        QTest::ignoreMessage(QtWarningMsg, qPrintable(start + counted));
    StoryStage stage;
    QCOMPARE(stage.document.loadFrom(file("damaged.scene")).damage.lostConnections, 3 * events);
}

// There is no room for a temporary's name, and so the file itself is made before it is known what comes in.
void tst_SceneDocument::saveThatIsGivenUpLeavesNoFile()
{
    StoryStage stage;
    const QString path = folder.filePath(QString(250, QLatin1Char('x')));
    const QRegularExpression toldOf(QStringLiteral("^Couldn't write the scene file: .* \"it must not be\"$"));
    QTest::ignoreMessage(QtWarningMsg, toldOf);
    QTest::ignoreMessage(QtWarningMsg, toldOf);
    QCOMPARE(stage.document.saveTo(path,
                                   [] {
                                       return Replacing{QStringLiteral("it must not be"), {}};
                                   })
                 .trouble,
             QStringLiteral("it must not be"));
    QVERIFY(!QFile::exists(path));
    QCOMPARE(stage.document.saveTo(path).trouble, QString());
    QCOMPARE(readFile(path), stage.document.bytes());
    QVERIFY(!stage.document.saveTo(path,
                                   [] {
                                       return Replacing{QStringLiteral("it must not be"), {}};
                                   })
                 .trouble.isEmpty());
    QVERIFY(QFile::exists(path)); // it was there before
}

QTEST_MAIN(tst_SceneDocument)
#include "tst_scenedocument.moc"
