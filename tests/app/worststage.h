#pragma once

#include "app/longruns.h"
#include "app/windowsupport.h"
#include "items/stnodename.h"
#include "scene/shownscene.h"
#include "support/screenwatch.h"

#include <QGraphicsView>
#include <QInputMethodEvent>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>
#include <memory>

/// Answers the next dialog that comes up, over whatever is open now.
class NextDialog
{
public:
    explicit NextDialog(const DialogAnswers::Answer &answer)
    {
        const QPointer<QWidget> former = QApplication::activeModalWidget();
        QObject::connect(&poll, &QTimer::timeout, &poll, [this, former, answer] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog || dialog == former)
                return;
            poll.stop();
            came = true;
            QMetaObject::invokeMethod(
                dialog, [answer, dialog] { answer(dialog); }, Qt::QueuedConnection);
        });
        poll.start(1);
    }
    bool hasCome() const { return came; }

private:
    QTimer poll;
    bool came = false;
};

/// Shows a canvas at another scale as long as this object lives, and then as it was shown before. Null is
/// none.
class SeenAt
{
public:
    SeenAt(NodegraphView *canvas, double scale) : view(canvas)
    {
        if (!view)
            return;
        former = view->transform();
        corner = QPoint(view->horizontalScrollBar()->value(), view->verticalScrollBar()->value());
        view->setTransform(QTransform::fromScale(scale, scale));
    }
    ~SeenAt()
    {
        if (!view)
            return;
        view->setTransform(former);
        view->horizontalScrollBar()->setValue(corner.x());
        view->verticalScrollBar()->setValue(corner.y());
    }
    SeenAt(const SeenAt &) = delete;
    SeenAt &operator=(const SeenAt &) = delete;

private:
    QPointer<NodegraphView> view;
    QTransform former;
    QPoint corner;
};

/// Two tabs. In the first, Dawn leads to Noon, which was added last, and Noon to Night; Dusk is on its own.
/// Noon is the one that will go; it is selected, as by a rubber band. The second tab holds one event.
class WorstStage
{
public:
    WorstStage();
    ~WorstStage()
    {
        window.reset();
        flushDeferredDeletes();
    }
    WorstStage(const WorstStage &) = delete;
    WorstStage &operator=(const WorstStage &) = delete;

    NodegraphView *view() const { return window->views().front(); }
    NodegraphScene *scene() const { return view()->nodegraphScene(); }
    OverViewerScene *panel() const { return window->overviewerScene(); }
    void trigger(const char *action) const { actionOf(*window, action)->trigger(); }
    QString file(const char *name) const { return home.filePath(QString::fromLatin1(name)); }

    // Everything comes in through the window, as from a real mouse and keyboard. All points are of Noon's
    // tab.
    void move(QPointF pos) const { QTest::mouseMove(window->windowHandle(), inWindow(pos)); }
    void press(QPointF pos);
    void release(QPointF pos);
    /// Lets go of the mouse, if it is held, over Dusk's input: where that was when the mouse was pressed.
    void letGo();
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;
    /// Clicks into the text and types something, of which a part stays selected.
    void edit(const QGraphicsTextItem *text) const;
    /// Sends what an input method says to whatever has the focus.
    static void compose(const QString &preedit, const QString &committed);

    /// Whether Noon's tab is still open.
    bool tabIsThere() const;
    /// The text that has the keyboard, null if none has.
    QGraphicsTextItem *editedText() const;
    /// Destroys what waits for it and paints what asks for it; the screen then shows what is.
    void paint() const;
    /// What stands on the screen is what the window would be painted as.
    void look() const;

    PrivateHome home;
    std::unique_ptr<MainWindow> window;
    QPointer<NodegraphView> itsView; // Noon's
    QPointer<Node> dusk;
    QPointer<Node> dawn;
    QPointer<Node> noon;
    QPointer<Node> night;

private:
    QPoint inWindow(QPointF pos) const
    {
        return view()->viewport()->mapTo(window.get(), view()->mapFromScene(pos));
    }

    bool isHeld = false;
    QPoint whereHeld; // in the window
    QPoint whereLeft;
};

inline WorstStage::WorstStage() : window(std::make_unique<MainWindow>())
{
    window->resize(1500, 640);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    Record duskRecord{QStringLiteral("Dusk"), QPointF(20, 320), 0};
    Record dawnRecord{QStringLiteral("Dawn"), QPointF(20, 20), 1, -1, true};
    Record nightRecord{QStringLiteral("Night"), QPointF(560, 420), 2};
    Record awayRecord{QStringLiteral("Away"), QPointF(20, 30), 0, -1, true};
    for (Record *record : {&duskRecord, &dawnRecord, &nightRecord, &awayRecord})
        record->description = QStringLiteral("What happens at %1.").arg(record->title);
    QVERIFY(
        writeFile(file("story.scene"), documentBytes({{duskRecord, dawnRecord, nightRecord}, {awayRecord}})));
    QVERIFY(writeFile(file("other.scene"), documentBytes({{awayRecord}, {awayRecord, nightRecord}})));
    window->loadFrom(file("story.scene"));
    tabsOf(*window)->setCurrentIndex(0);
    QApplication::processEvents();
    const auto showCorner = [this] {
        view()->resetTransform();
        view()->horizontalScrollBar()->setValue(0);
        view()->verticalScrollBar()->setValue(0);
    };
    showCorner();
    itsView = view();
    dusk = scene()->findNodeByIndex(0);
    dawn = scene()->findNodeByIndex(1);
    night = scene()->findNodeByIndex(2);
    press(bodyOf(dawn));
    release(bodyOf(dawn));
    trigger("actionAdd_Event");
    noon = scene()->nodes().back();
    QCOMPARE(noon->prevNode(), dawn.data());
    noon->setNodeName(QStringLiteral("Noon"));
    typeInto(descriptionOf(noon), QStringLiteral("What happens at Noon."));
    noon->setPos(560, 200);
    noon->updateLines();
    showCorner();
    press(outputOf(noon));
    move(inputOf(night) - QPointF(30, 30));
    release(inputOf(night));
    QCOMPARE(night->prevNode(), noon.data());
    const QRectF around = noon->sceneBoundingRect().adjusted(-20, -20, 20, 20);
    press(around.topLeft());
    move(around.center());
    release(around.bottomRight());
    QCOMPARE(scene()->selectedNodes(), std::vector<Node *>{noon});
}

inline void WorstStage::press(QPointF pos)
{
    move(pos);
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, inWindow(pos));
    isHeld = true;
    // Where the mouse will be let go, whatever has become of the tab by then.
    whereHeld = inWindow(pos);
    whereLeft = inWindow(inputOf(dusk));
}

inline void WorstStage::release(QPointF pos)
{
    move(pos);
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, inWindow(pos));
    isHeld = false;
}

inline void WorstStage::letGo()
{
    if (!isHeld)
        return;
    QTest::mouseMove(window->windowHandle(), (whereHeld + whereLeft) / 2);
    QTest::mouseMove(window->windowHandle(), whereLeft);
    paint();
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, whereLeft);
    isHeld = false;
    paint();
}

inline void WorstStage::key(Qt::Key key, Qt::KeyboardModifiers modifiers) const
{
    QWindow *receiver = QGuiApplication::focusWindow();
    QTest::keyClick(receiver ? receiver : window->windowHandle(), key, modifiers);
}

inline void WorstStage::edit(const QGraphicsTextItem *text) const
{
    const QGraphicsView *canvas = text->scene()->views().front();
    const QPoint middle = canvas->mapFromScene(text->mapToScene(text->boundingRect().center()));
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      canvas->viewport()->mapTo(window.get(), middle));
    QVERIFY(text->hasFocus());
    key(Qt::Key_End, Qt::ControlModifier);
    for (const Qt::Key letter : {Qt::Key_F, Qt::Key_O, Qt::Key_G})
        key(letter);
    key(Qt::Key_Left, Qt::ShiftModifier);
    QVERIFY(text->toPlainText().endsWith(QLatin1String("fog")));
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("g"));
}

inline void WorstStage::compose(const QString &preedit, const QString &committed)
{
    QInputMethodEvent event(preedit, {});
    event.setCommitString(committed);
    if (QWidget *receiver = QApplication::focusWidget())
        QApplication::sendEvent(receiver, &event);
}

inline bool WorstStage::tabIsThere() const
{
    const std::vector<NodegraphView *> &open = window->views();
    return itsView && std::find(open.begin(), open.end(), itsView.data()) != open.end();
}

inline QGraphicsTextItem *WorstStage::editedText() const
{
    const auto *canvas = qobject_cast<QGraphicsView *>(QApplication::focusWidget());
    return canvas ? dynamic_cast<QGraphicsTextItem *>(canvas->scene()->focusItem()) : nullptr;
}

inline void WorstStage::paint() const
{
    flushDeferredDeletes();
    QApplication::processEvents();
    look();
}

inline void WorstStage::look() const { QCOMPARE(ScreenWatch::fault(*window), QString()); }
