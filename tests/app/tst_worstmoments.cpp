#include "app/worstmoments.h"

#include <QDir>

// A node goes while the mouse holds something of it.

class tst_WorstMoments : public QObject
{
    Q_OBJECT

public:
    static void initMain() { keepFilesInMemory(); }

private slots:
    void init() { failOnWarningsButOfMenus(); }

    void mouseIsHeld_data();
    void mouseIsHeld();
    void autosaveFiresAtTheSameTime_data();
    void autosaveFiresAtTheSameTime();

private:
    static void begin(WorstMoment &stage, const QString &moment);
};

namespace {

const std::vector<const char *> mouseMoments{"nothing",
                                             "node dragged",
                                             "nodes dragged",
                                             "line dragged from its output",
                                             "line picked up from its input",
                                             "line dragged towards its input",
                                             "line into it pressed near it",
                                             "line into it pressed far away",
                                             "line out of it pressed near it",
                                             "line out of it pressed far away",
                                             "rubber band drawn"};

bool nearNoon(const QString &moment) { return moment.endsWith(QLatin1String("near it")); }

} // namespace

/// Brings about what is under way when the node goes. The mouse stays held.
void tst_WorstMoments::begin(WorstMoment &stage, const QString &moment)
{
    const NodegraphScene *scene = stage.scene();
    const auto pressAndMove = [&stage](QPointF from, QPointF to) {
        stage.press(from);
        stage.move((from + to) / 2);
        stage.move(to);
    };
    const QPointF open(460, 300); // nothing is there
    if (moment == QLatin1String("node dragged")) {
        pressAndMove(bodyOf(stage.noon), bodyOf(stage.noon) + QPointF(20, 30));
        QCOMPARE(scene->mouseGrabberItem(), stage.noon.data());
    } else if (moment == QLatin1String("nodes dragged")) {
        const QRectF both = stage.noon->sceneBoundingRect() | stage.night->sceneBoundingRect();
        stage.press(both.topLeft() - QPointF(20, 20));
        stage.move(both.center());
        stage.release(both.bottomRight() + QPointF(20, 20));
        QCOMPARE(scene->selectedNodes().size(), std::size_t(2));
        pressAndMove(bodyOf(stage.noon), bodyOf(stage.noon) + QPointF(20, 30));
        QCOMPARE(scene->mouseGrabberItem(), stage.noon.data());
    } else if (moment == QLatin1String("line dragged from its output")) {
        pressAndMove(outputOf(stage.noon), open);
        QVERIFY(dragLineOf(*scene));
    } else if (moment == QLatin1String("line picked up from its input")) {
        pressAndMove(inputOf(stage.noon), open);
        QVERIFY(dragLineOf(*scene));
        QVERIFY(!stage.noon->hasInput());
    } else if (moment == QLatin1String("line dragged towards its input")) {
        pressAndMove(outputOf(stage.dusk), inputOf(stage.noon));
        QVERIFY(dragLineOf(*scene));
    } else if (moment.startsWith(QLatin1String("line into it pressed"))) {
        stage.press(stage.noon->inLine()->path().pointAtPercent(nearNoon(moment) ? 0.4 : 0.6));
        QVERIFY(!stage.noon->hasInput() && dragLineOf(*scene));
    } else if (moment.startsWith(QLatin1String("line out of it pressed"))) {
        stage.press(stage.night->inLine()->path().pointAtPercent(nearNoon(moment) ? 0.6 : 0.4));
        QVERIFY(!stage.night->hasInput() && dragLineOf(*scene));
    } else if (moment == QLatin1String("rubber band drawn")) {
        pressAndMove(stage.noon->sceneBoundingRect().topLeft() - QPointF(20, 20),
                     stage.noon->sceneBoundingRect().center());
        QVERIFY(!rubberBandOf(*scene)->rect().isNull());
    }
}

void tst_WorstMoments::mouseIsHeld_data() { WorstMoment::waysAsRows(mouseMoments); }

void tst_WorstMoments::mouseIsHeld()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    WorstMoment stage;
    if (QTest::currentTestFailed())
        return;
    begin(stage, moment);
    stage.go(way);
    stage.goOn();
}

void tst_WorstMoments::autosaveFiresAtTheSameTime_data()
{
    WorstMoment::waysAsRows({"nothing", "node dragged", "line dragged from its output"});
}

// The minute runs out over and over while the node goes and while the work goes on.
void tst_WorstMoments::autosaveFiresAtTheSameTime()
{
    QFETCH(QString, moment);
    QFETCH(QString, way);
    WorstMoment stage;
    if (QTest::currentTestFailed())
        return;
    begin(stage, moment);
    auto *timer = stage.window->findChild<QTimer *>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer);
    int autosaves = 0;
    connect(timer, &QTimer::timeout, this, [&autosaves] { ++autosaves; });
    timer->setInterval(0);
    bool gone = false;
    QTimer::singleShot(0, stage.window.get(), [&] {
        stage.go(way);
        gone = true;
    });
    QTRY_VERIFY(gone && autosaves > 0);
    const int atThatTime = autosaves;
    QTRY_VERIFY(autosaves > atThatTime);
    timer->setInterval(5);
    stage.goOn();
    const QDir folder(stage.home.filePath(QStringLiteral("Documents/Fablegrid/Autosavedir")));
    const QStringList copies = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
    QVERIFY(!copies.isEmpty());
    stage.window->autosave();
    const QStringList all = folder.entryList(QDir::Files | QDir::Hidden, QDir::Name);
    QCOMPARE(readFile(folder.filePath(all.back())).toHex(), readFile(stage.file("saved.scene")).toHex());
}

QTEST_MAIN(tst_WorstMoments)
#include "tst_worstmoments.moc"
