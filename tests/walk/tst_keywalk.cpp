#include "walk/walk.h"

namespace {

const QColor selectedColour(QStringLiteral("#EBF400"));
const QColor plainColour(QStringLiteral("#D9D9D9"));
const QColor endColour(QStringLiteral("#D6B4FC"));

/// What the commands on the graph write when a key reaches them.
const QStringList graphCommands{
    QStringLiteral("Undoing"), QStringLiteral("Redoing"), QStringLiteral("Copy"),
    QStringLiteral("cut"),     QStringLiteral("paste"),   QStringLiteral("Del"),
};

enum class Text { title, description, entry };

/// Keys that are pressed one after the other, and what the text then is.
struct Edit
{
    QStringList keys;
    QString text;
};

/// "dawn" has been typed before.
const QList<Edit> edits{
    {{QStringLiteral("ctrl+a"), QStringLiteral("ctrl+c"), QStringLiteral("End"), QStringLiteral("ctrl+v")},
     QStringLiteral("dawndawn")},
    {{QStringLiteral("ctrl+z")}, QStringLiteral("dawn")},
    {{QStringLiteral("ctrl+y")}, QStringLiteral("dawndawn")},
    {{QStringLiteral("Home"), QStringLiteral("Delete")}, QStringLiteral("awndawn")},
    {{QStringLiteral("End"), QStringLiteral("BackSpace")}, QStringLiteral("awndaw")},
    {{QStringLiteral("ctrl+a"), QStringLiteral("ctrl+x")}, QString()},
    {{QStringLiteral("ctrl+v"), QStringLiteral("ctrl+v")}, QStringLiteral("awndawawndaw")},
    {{QStringLiteral("ctrl+a"), QStringLiteral("Delete")}, QString()},
    {{QStringLiteral("ctrl+z")}, QStringLiteral("awndawawndaw")},
};

} // namespace

class tst_KeyWalk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY2(walk.desktop.start(), qPrintable(desktop.problem())); }
    void init() { failOnWarnings(); }
    void cleanup() { walk.tidyUp(); }

    void keysEditTheTextThatHasTheFocus_data();
    void keysEditTheTextThatHasTheFocus();
    void keysActOnTheGraphOnceATextIsLeft_data();
    void keysActOnTheGraphOnceATextIsLeft();
    void copyOfATextArrivesInTheOthers();

private:
    void startSaved(const QString &name);
    QPoint placeOf(Text text) const;
    void showsBodies(const QList<QColor> &colours);
    void selectEverything();
    void deleteAndUndo();
    void moveLastEvent(const QString &takingKey);
    void press(const QString &key, int times);

    Walk walk;
    const Desktop &desktop = walk.desktop;
    const EditorWindow &window = walk.window;
    QString path;
    SavedScene scene; // as it was saved last
};

/// A chain of three events whose file exists and is the document's.
void tst_KeyWalk::startSaved(const QString &name)
{
    path = desktop.homePath(name + QStringLiteral(".scene"));
    STEP(walk.start(name));
    STEP(walk.addChain(3));
    STEP(walk.saveFirst(path));
    scene = readScene(path);
    QCOMPARE(scene.problem, QString());
    QCOMPARE(scene.tabs.size(), 1);
    QCOMPARE(scene.tabs.at(0).size(), 3);
}

/// Where the first event's texts can be clicked; null if they are not in sight.
QPoint tst_KeyWalk::placeOf(Text text) const
{
    const QList<EventBox> boxes = window.shownEvents(3);
    if (boxes.isEmpty() || !window.comesToShowEntries(3))
        return {};
    if (text == Text::entry)
        return window.entries().at(0).center();
    return text == Text::title ? boxes.at(0).title() : boxes.at(0).description();
}

void tst_KeyWalk::showsBodies(const QList<QColor> &colours)
{
    const QList<EventBox> boxes = window.shownEvents(int(colours.size()));
    QCOMPARE(boxes.size(), colours.size());
    for (int i = 0; i < colours.size(); ++i)
        QVERIFY2(window.comesToShowBodyColour(boxes.at(i), colours.at(i)), qPrintable(QString::number(i)));
}

void tst_KeyWalk::keysEditTheTextThatHasTheFocus_data()
{
    QTest::addColumn<int>("text");
    QTest::newRow("title") << int(Text::title);
    QTest::newRow("description") << int(Text::description);
    QTest::newRow("entry") << int(Text::entry);
}

void tst_KeyWalk::keysEditTheTextThatHasTheFocus()
{
    QFETCH(const int, text);
    STEP(startSaved(QStringLiteral("keys-") + QLatin1String(QTest::currentDataTag())));

    // With everything selected and copied, a key that went astray would leave a trace.
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    QVERIFY(window.key(QStringLiteral("ctrl+c")));
    STEP(showsBodies({selectedColour, selectedColour, selectedColour}));
    QCOMPARE(walk.logged({QStringLiteral("Copy")}), 1);
    const int commands = walk.logged(graphCommands);

    const QPoint place = placeOf(Text(text));
    QVERIFY(!place.isNull());
    QVERIFY(desktop.click(place));
    QVERIFY(desktop.type(QStringLiteral("dawn")));
    SavedEvent &edited = scene.tabs[0][0];
    QString &content = Text(text) == Text::title ? edited.title : edited.description;
    content = QStringLiteral("dawn");
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    for (const Edit &edit : edits) {
        for (const QString &key : edit.keys)
            QVERIFY(window.key(key));
        content = edit.text;
        QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    }
    QCOMPARE(walk.logged(graphCommands), commands);
    STEP(walk.checkScreen());
    QCOMPARE(window.shownEvents(3).size(), 3);
    QVERIFY(window.comesToShowEntries(3));

    // The graph's own history is as it was: its last command is the third event.
    QVERIFY(window.clickEmptyCanvas());
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QVERIFY(window.comesToShowEntries(2));
    QCOMPARE(walk.savedAgain(path).tabs.value(0).size(), 2);
    QVERIFY(window.key(QStringLiteral("ctrl+y")));
    QVERIFY(window.comesToShowEntries(3));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    STEP(walk.end());
}

void tst_KeyWalk::keysActOnTheGraphOnceATextIsLeft_data()
{
    QTest::addColumn<int>("text");
    QTest::addColumn<bool>("ontoBody");
    QTest::newRow("title to canvas") << int(Text::title) << false;
    QTest::newRow("description to body") << int(Text::description) << true;
    QTest::newRow("entry to canvas") << int(Text::entry) << false;
}

void tst_KeyWalk::keysActOnTheGraphOnceATextIsLeft()
{
    QFETCH(const int, text);
    QFETCH(const bool, ontoBody);
    STEP(
        startSaved(QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-'))));
    const QPoint place = placeOf(Text(text));
    QVERIFY(!place.isNull());
    QVERIFY(desktop.click(place));
    QVERIFY(desktop.type(QStringLiteral("dawn")));
    SavedEvent &edited = scene.tabs[0][0];
    (Text(text) == Text::title ? edited.title : edited.description) = QStringLiteral("dawn");

    QVERIFY(ontoBody ? window.clickEvent(1, 3) : window.clickEmptyCanvas());
    STEP(selectEverything());
    STEP(deleteAndUndo());
    STEP(moveLastEvent(QStringLiteral("ctrl+c")));
    STEP(moveLastEvent(QStringLiteral("ctrl+x")));
    STEP(walk.end());
}

void tst_KeyWalk::selectEverything()
{
    QVERIFY(window.key(QStringLiteral("BackSpace")));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    STEP(showsBodies({selectedColour, selectedColour, selectedColour}));
    QVERIFY(window.key(QStringLiteral("BackSpace")));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    STEP(showsBodies({selectedColour, selectedColour, selectedColour}));
}

/// Deletes what is selected, and takes it back event by event.
void tst_KeyWalk::deleteAndUndo()
{
    QVERIFY(window.key(QStringLiteral("Delete")));
    QVERIFY(window.comesToShowEntries(0));
    QVERIFY(eventually([this] { return window.events().isEmpty(); }));
    const SavedScene emptied = walk.savedAgain(path);
    QCOMPARE(emptied.problem, QString());
    QCOMPARE(emptied.tabs.size(), 1);
    QCOMPARE(emptied.tabs.at(0).size(), 0);
    for (int count = 1; count <= 3; ++count) {
        QVERIFY(window.key(QStringLiteral("ctrl+z")));
        QCOMPARE(walk.savedAgain(path).tabs.value(0).size(), count);
    }
    QVERIFY(window.key(QStringLiteral("ctrl+y")));
    QCOMPARE(walk.savedAgain(path).tabs.value(0).size(), 2);
    QVERIFY(window.key(QStringLiteral("ctrl+z")));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    STEP(walk.checkScreen());
}

/// Takes the last event by copy or cut, and puts it down further below.
void tst_KeyWalk::moveLastEvent(const QString &takingKey)
{
    const bool cut = takingKey == QStringLiteral("ctrl+x");
    QVERIFY(window.clickEmptyCanvas());
    STEP(showsBodies({plainColour, plainColour, endColour}));
    const QList<EventBox> boxes = window.shownEvents(3);
    QCOMPARE(boxes.size(), 3);
    const EventBox box = boxes.at(2);
    const QPoint target = box.at(-60, 220);
    QVERIFY(desktop.click(box.body()));
    QVERIFY(window.key(takingKey));
    const int left = cut ? 2 : 3;
    QCOMPARE(window.shownEvents(left).size(), left);
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene)); // cut events included

    QVERIFY(desktop.moveTo(target));
    QVERIFY(window.key(QStringLiteral("ctrl+v")));
    QVERIFY(eventually([&] {
        const QList<EventBox> seen = window.events();
        return seen.size() == 3 && (seen.at(2).header.topLeft() - target).manhattanLength() <= 4;
    }));
    QVERIFY(window.comesToShowEntries(1));
    const SavedScene pasted = walk.savedAgain(path);
    QCOMPARE(pasted.tabs.value(0).size(), 3);
    const SavedEvent &from = scene.tabs.at(0).at(2);
    const SavedEvent &to = pasted.tabs.at(0).at(2);
    QCOMPARE(to.title, from.title);
    QCOMPARE(to.description, from.description);
    QCOMPARE(to.upstream, -1);
    QCOMPARE(to.endOfStory, 1);
    QVERIFY(qAbs(to.x - from.x + 60) < 5);
    QVERIFY(qAbs(to.y - from.y - 220) < 5);

    // The deletion of the old one and the new one are a step each.
    STEP(press(QStringLiteral("ctrl+z"), 2));
    QVERIFY(window.comesToShowEntries(3));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    STEP(showsBodies({plainColour, plainColour, endColour}));
    STEP(press(QStringLiteral("ctrl+y"), 2));
    QVERIFY(window.comesToShowEntries(1));
    QCOMPARE(toText(walk.savedAgain(path)), toText(pasted));
    STEP(press(QStringLiteral("ctrl+z"), 2));
    QVERIFY(window.comesToShowEntries(3));
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
}

void tst_KeyWalk::press(const QString &key, int times)
{
    for (int i = 0; i < times; ++i)
        QVERIFY(window.key(key));
}

void tst_KeyWalk::copyOfATextArrivesInTheOthers()
{
    STEP(startSaved(QStringLiteral("text-copied")));
    const QPoint title = placeOf(Text::title);
    const QPoint description = placeOf(Text::description);
    const QPoint entry = placeOf(Text::entry);
    QVERIFY(!title.isNull());
    QVERIFY(desktop.click(title));
    QVERIFY(desktop.type(QStringLiteral("fog <b>bank</b>")));
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    QVERIFY(window.key(QStringLiteral("ctrl+c")));
    QVERIFY(desktop.click(description));
    QVERIFY(window.key(QStringLiteral("ctrl+v")));
    SavedEvent &edited = scene.tabs[0][0];
    edited.title = QStringLiteral("fog <b>bank</b>");
    edited.description = edited.title;
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));

    // What was cut out of the panel's entry comes back twice in the title.
    QVERIFY(desktop.click(entry));
    QVERIFY(window.key(QStringLiteral("ctrl+a")));
    QVERIFY(window.key(QStringLiteral("ctrl+x")));
    edited.description.clear();
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    QVERIFY(desktop.click(title));
    QVERIFY(window.key(QStringLiteral("ctrl+v")));
    QVERIFY(window.key(QStringLiteral("ctrl+v")));
    edited.title += edited.title;
    QCOMPARE(toText(walk.savedAgain(path)), toText(scene));
    STEP(walk.end());
}

QTEST_GUILESS_MAIN(tst_KeyWalk)
#include "tst_keywalk.moc"
