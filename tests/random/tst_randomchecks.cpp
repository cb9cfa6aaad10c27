#include "random/changes.h"
#include "random/hands.h"
#include "random/invariants.h"
#include "random/panelwatch.h"
#include "random/storywindow.h"
#include "scene/shownscene.h"
#include "support/processfigures.h"

#include <QGraphicsTextItem>

// The checks that the random edits rely on are checked themselves: each finds the damage that is made here on
// purpose, and nothing else.

using Tampering = std::function<void(NodegraphScene &)>;
Q_DECLARE_METATYPE(Tampering)

class tst_RandomChecks : public ProgramTest
{
    Q_OBJECT

private slots:
    void aSoundWindowHasNoFault();
    void damageToASceneIsFound_data();
    void damageToASceneIsFound();
    void aMarkThatIsSavedWronglyIsFound();
    void anIndexThatDoesNotReadBackIsFound();
    void costOfOpeningIsFound_data();
    void costOfOpeningIsFound();
    void whatIsUsedIsCounted();
    void linesOfADragAreAllowedWhileTheMouseHoldsThem();
    void damageToThePanelIsFound_data();
    void damageToThePanelIsFound();
    void aTextThatWentUnreportedMayDiffer();
    void aStoryOfAnotherTabIsFound();
};

void tst_RandomChecks::aSoundWindowHasNoFault()
{
    StoryWindow story;
    QCOMPARE(Invariants::faultOfScene(story.scene, false), QString());
    QCOMPARE(Invariants::faultOfBytes(story.scene), QString());
    QCOMPARE(Invariants::faultOfReload(story.scene), QString());
    PanelWatch panel;
    QCOMPARE(panel.fault(story.window, {}), QString());
    Changes changes;
    QCOMPARE(changes.unexplained(story.window, {{}, Effect::documents}), QString());
    QCOMPARE(changes.unexplained(story.window, {}), QString());
    QCOMPARE(changes.startOf(story.window.views().front()), (QSet<int>{0, 1, 2, 3}));
}

void tst_RandomChecks::damageToASceneIsFound_data()
{
    QTest::addColumn<Tampering>("damage");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char *name, const Tampering &damage, const char *fault) {
        QTest::newRow(name) << damage << QString::fromLatin1(fault);
    };
    row(
        "event not listed", [](auto &s) { s.addItem(new Node(0)); },
        "the events listed are not those on the canvas");
    row(
        "stranger", [](auto &s) { s.addText(QStringLiteral("?")); },
        "something on the canvas is no event, line or rubber band");
    row(
        "second band", [](auto &s) { s.addRect(QRectF()); }, "2 rubber bands");
    row(
        "band that stays", [](auto &s) { rubberBandOf(s)->setRect(0, 0, 9, 9); },
        "a rubber band that nobody draws");
    row(
        "stray line", [](auto &s) { s.addItem(new ConnectionLine(QPointF(), QPointF(9, 9))); },
        "1 lines that lead nowhere");
    row(
        "forgotten line", [](auto &s) { node(s, 1)->setInLine(nullptr); },
        "2 lines on the canvas, 1 of events");
    row(
        "line that lags", [](auto &s) { node(s, 1)->inLine()->sl_setStart(QPointF()); },
        "event 1 has a line that does not end on its input");
    row(
        "event moved alone", [](auto &s) { node(s, 0)->moveBy(0, 1); },
        "event 1 has a line that does not end on the output of 0");
    row(
        "line out of sight", [](auto &s) { node(s, 1)->inLine()->hide(); },
        "event 1 has a line that is not seen as its ends are");
    row(
        "line between others",
        [](auto &s) { node(s, 1)->inLine()->setSockets(node(s, 3)->inSocket(), node(s, 0)->outSocket()); },
        "event 1 has a line between other sockets");
    row(
        "half a connection", [](auto &s) { node(s, 3)->setHasInput(true); },
        "event 3 is fed by half a connection");
    row(
        "upstream index", [](auto &s) { node(s, 1)->setPrevIndex(2); }, "event 1 has the upstream index 2");
    row(
        "not in the list", [](auto &s) { node(s, 0)->removeNextNode(node(s, 1)); },
        "event 0 has an output socket that says otherwise");
    row(
        "listed twice", [](auto &s) { node(s, 0)->addNextNode(node(s, 1)); },
        "event 1 is fed by one that does not feed it");
    row(
        "listed only", [](auto &s) { node(s, 2)->addNextNode(node(s, 3)); },
        "event 2 feeds one that is not fed by it");
    row(
        "input socket", [](auto &s) { node(s, 1)->inSocket()->setIsConnected(false); },
        "event 1 has an input socket that says otherwise");
    row(
        "partner", [](auto &s) { node(s, 1)->inSocket()->setConnectedSocket(node(s, 3)->outSocket()); },
        "event 1 has an input socket that says otherwise");
    row(
        "output socket", [](auto &s) { node(s, 3)->outSocket()->setIsConnected(true); },
        "event 3 has an output socket that says otherwise");
    row(
        "partner of output", [](auto &s) { node(s, 0)->outSocket()->setConnectedSocket(nullptr); },
        "event 0 has an output socket that says otherwise");
    row(
        "socket off its edge", [](auto &s) { node(s, 3)->outSocket()->moveBy(1, 0); },
        "event 3 has a socket that is not at its edge");
    row(
        "shared index", [](auto &s) { node(s, 3)->setIndex(2); }, "event 2 shares its index");
    row(
        "two ends", [](auto &s) { node(s, 1)->setIsEndOfStory(true); },
        "event 1 has an end mark that the tab does not know");
    row(
        "old story", [](auto &s) { node(s, 1)->setPrevNode(nullptr); },
        "the story is not the way to its end");
}

void tst_RandomChecks::damageToASceneIsFound()
{
    StoryWindow story;
    QFETCH(Tampering, damage);
    QFETCH(QString, fault);
    damage(story.scene);
    QCOMPARE(Invariants::faultOfScene(story.scene, false), fault);
}

void tst_RandomChecks::aMarkThatIsSavedWronglyIsFound()
{
    StoryWindow story;
    node(story.scene, 1)->setIsEndOfStory(true);
    const QString fault = Invariants::faultOfBytes(story.scene);
    QVERIFY2(fault.contains(QStringLiteral("index 1 from 0 end 1")), qPrintable(fault));
    QVERIFY2(fault.contains(QStringLiteral("index 1 from 0 end 0")), qPrintable(fault));
}

void tst_RandomChecks::anIndexThatDoesNotReadBackIsFound()
{
    StoryWindow story;
    node(story.scene, 3)->setPrevIndex(77);
    QCOMPARE(Invariants::faultOfReload(story.scene),
             QStringLiteral("what is saved reads back as something else"));
}

void tst_RandomChecks::costOfOpeningIsFound_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("megabytes");
    QTest::addColumn<QString>("fault");
    QTest::newRow("nothing") << 0.0 << 0.0 << QString();
    QTest::newRow("all that is allowed") << 5.0 << 500.0 << QString();
    QTest::newRow("time") << 5.5 << 0.0 << QStringLiteral("opening takes 5.5 s and 0 MB");
    QTest::newRow("memory") << 1.0 << 501.0 << QStringLiteral("opening takes 1 s and 501 MB");
}

void tst_RandomChecks::costOfOpeningIsFound()
{
    QFETCH(const double, seconds);
    QFETCH(const double, megabytes);
    QTEST(faultOfOpening({seconds, megabytes}), "fault");
}

// Also what is given back before the end.
void tst_RandomChecks::whatIsUsedIsCounted()
{
#ifdef Q_OS_LINUX
    if (!forgetPeakMemory())
        QSKIP("The system does not tell the peak of the memory anew");
    constexpr int size = 64 * 1024 * 1024;
    const Cost cost = costOf([] {
        QByteArray block(size, 'x');
        const double start = processorSeconds();
        while (processorSeconds() - start < 0.05)
            block[0] = char(block.at(0) + 1);
    });
    QVERIFY2(cost.megabytes > 60, qPrintable(QString::number(cost.megabytes)));
    QVERIFY2(cost.seconds >= 0.05, qPrintable(QString::number(cost.seconds)));
#else
    QSKIP("Only this system tells it");
#endif
}

void tst_RandomChecks::linesOfADragAreAllowedWhileTheMouseHoldsThem()
{
    StoryWindow story;
    const Node *dragged = node(story.scene, 1);
    SceneMouse mouse{story.scene};
    const QPointF start = bodyOf(dragged);
    mouse.press(start);
    mouse.move(start + QPointF(50, 50));
    QVERIFY(startOf(dragged->inLine()) != inputOf(dragged));
    QCOMPARE(Invariants::faultOfScene(story.scene, true), QString());
    mouse.release(start + QPointF(50, 50));
    QCOMPARE(Invariants::faultOfScene(story.scene, false), QString());
}

void tst_RandomChecks::damageToThePanelIsFound_data()
{
    QTest::addColumn<WindowDamage>("damage");
    QTest::addColumn<QString>("fault");
    const auto row = [](const char *name, const WindowDamage &damage, const char *fault) {
        QTest::newRow(name) << damage << QString::fromLatin1(fault);
    };
    row(
        "missing", [](auto &w) { w.overviewerScene()->sl_recieveNodes({}); },
        "the panel lists 0 events of 3");
    row(
        "unfiltered", [](auto &w) { buttonOf(w, "F1_button")->setChecked(true); },
        "the panel lists 3 events of 0");
    row(
        "index", [](auto &w) { entry(w, 0)->setIndex(9); }, "entry 0 of event 0 has the index 9");
    row(
        "importance", [](auto &w) { entry(w, 1)->setImportant(true); },
        "entry 1 of event 1 has the wrong importance");
    row(
        "place", [](auto &w) { entry(w, 1)->moveBy(0, 1); },
        "entry 1 of event 1 is not where the entry above ends");
    row(
        "text of the entry", [](auto &w) { contentOf(entry(w, 2))->setDescription(QStringLiteral("x")); },
        "entry 2 of event 2 says 'x' instead of 'Enter description'");
    row(
        "text of the event", [](auto &w) { contentOf(node(w, 0))->setDescription(QStringLiteral("y")); },
        "entry 0 of event 0 says 'Enter description' instead of 'y'");
}

void tst_RandomChecks::damageToThePanelIsFound()
{
    StoryWindow story;
    QFETCH(WindowDamage, damage);
    QFETCH(QString, fault);
    PanelWatch panel;
    QCOMPARE(panel.fault(story.window, {}), QString());
    damage(story.window);
    QCOMPARE(panel.fault(story.window, {}), fault);
}

// The panel's text is set in the event without a report. Typing the text that the event reported before is no
// news to it then, and the entry keeps what it says until the story is published again.
void tst_RandomChecks::aTextThatWentUnreportedMayDiffer()
{
    StoryWindow story;
    PanelWatch panel;
    QCOMPARE(panel.fault(story.window, {}), QString());
    ::typeInto(descriptionOf(entry(story.window, 0)), QStringLiteral("From the panel"));
    QCOMPARE(contentOf(node(story.window, 0))->getDescription(), QStringLiteral("From the panel"));
    QCOMPARE(panel.fault(story.window, {}), QString());
    ::typeInto(descriptionOf(node(story.window, 0)), QStringLiteral("Enter description"));
    QCOMPARE(contentOf(entry(story.window, 0))->getDescription(), QStringLiteral("From the panel"));
    QCOMPARE(panel.fault(story.window, {}), QString());
    QCOMPARE(panel.fault(story.window, {}), QString());

    story.scene.updateStory();
    QCOMPARE(panel.fault(story.window, {}), QString());
    contentOf(entry(story.window, 0))->setDescription(QStringLiteral("From the panel"));
    QVERIFY(!panel.fault(story.window, {}).isEmpty());
}

void tst_RandomChecks::aStoryOfAnotherTabIsFound()
{
    StoryWindow story;
    PanelWatch panel;
    QCOMPARE(panel.fault(story.window, {}), QString());
    sceneOf(story.window, 1)->updateStory();
    QCOMPARE(panel.fault(story.window, {}), QStringLiteral("the panel is not told of the current tab"));
    QCOMPARE(panel.fault(story.window, {{}, Effect::strays}), QString());
    QCOMPARE(panel.fault(story.window, {}), QString());
    story.scene.updateStory();
    sceneOf(story.window, 1)->updateStory();
    QCOMPARE(panel.fault(story.window, {{}, Effect::strays}), QString());
    story.scene.updateStory();
    QCOMPARE(panel.fault(story.window, {}), QString());
    sceneOf(story.window, 1)->updateStory();
    QVERIFY(!panel.fault(story.window, {}).isEmpty());
}

QTEST_MAIN(tst_RandomChecks)
#include "tst_randomchecks.moc"
