#pragma once

#include "app/worststage.h"

#include <functional>
#include <map>

// A node goes, in one way or another, while something is under way; and what must hold after that.

/// The stage on which Noon goes.
class WorstMoment : public WorstStage
{
public:
    /// Each moment together with each way in which a node goes, as rows. Each is seen at one of the scales,
    /// and each scale with all moments and all ways.
    static void waysAsRows(const std::vector<const char *> &moments);

    /// Lets Noon go while its tab is shown at the row's scale. What must hold at once is checked.
    void go(const QString &way);
    /// What the texts are now is what they must stay.
    void noteTexts();
    /// The same for the event of that text alone, which is one of its own or its entry's; null is none.
    void noteEdit(const QGraphicsTextItem *text);
    /// Lets go of the mouse and goes on working: undo, redo, keys, painting, saving, reading back.
    void goOn();

private:
    using Texts = std::map<int, QString>; // by the indices of their nodes

    void leave(const QString &way);
    bool isThere(const Node *node) const;
    bool hasText(const QString &text) const;
    Texts otherTexts() const;
    void undoUntilNoonIsGone(const std::function<void()> &undo) const;
    void undoAndRedo() const;
    void typeKeys() const;
    void saveAndReadBack() const;

    Texts textsBefore; // of those that stay
    QString noonText;
    int noonIndex = -1;
    bool noonIsGone = false;
    bool wasUndone = false;
};

inline QString textOf(const Node *node)
{
    return node->title() + QLatin1Char('|') + node->payload()->eventContent()->getDescription();
}

inline void WorstMoment::waysAsRows(const std::vector<const char *> &moments)
{
    static const char *const ways[] = {"Delete in the menu",
                                       "Del",
                                       "Ctrl+X",
                                       "Ctrl+X and Ctrl+V",
                                       "Cut and Paste in the menu",
                                       "Undo in the menu",
                                       "Ctrl+Z",
                                       "Delete and Undo in the menu",
                                       "New",
                                       "another file opened",
                                       "its tab closed"};
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("way");
    QTest::addColumn<double>("scale");
    // From far away a canvas may be painted in another manner.
    static constexpr double scales[] = {0.13, 1.0, 0.05};
    std::size_t row = 0;
    for (const char *moment : moments) {
        for (const char *way : ways)
            QTest::addRow("%s: %s", moment, way) << QString::fromLatin1(moment) << QString::fromLatin1(way)
                                                 << scales[row++ % std::size(scales)];
    }
}

/// Whether the node is on the canvas; never looks into one that may be no more.
inline bool WorstMoment::isThere(const Node *node) const
{
    if (!tabIsThere())
        return false;
    const std::vector<Node *> &nodes = itsView->nodegraphScene()->nodes();
    return node && std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

inline bool WorstMoment::hasText(const QString &text) const
{
    const std::vector<Node *> &nodes = scene()->nodes();
    return std::any_of(nodes.begin(), nodes.end(), [text](const Node *node) { return textOf(node) == text; });
}

/// The texts of those that stay.
inline WorstMoment::Texts WorstMoment::otherTexts() const
{
    Texts texts;
    for (const Node *node : {dusk.data(), dawn.data()}) {
        if (isThere(node))
            texts[node->getIndex()] = textOf(node);
    }
    return texts;
}

inline void WorstMoment::undoUntilNoonIsGone(const std::function<void()> &undo) const
{
    for (int i = 0; i < 6 && isThere(noon); ++i)
        undo();
}

inline void WorstMoment::leave(const QString &way)
{
    if (way == QLatin1String("Delete in the menu")) {
        trigger("actionDelete");
    } else if (way == QLatin1String("Del")) {
        key(Qt::Key_Delete);
    } else if (way == QLatin1String("Ctrl+X")) {
        key(Qt::Key_X, Qt::ControlModifier);
    } else if (way == QLatin1String("Ctrl+X and Ctrl+V")) {
        key(Qt::Key_X, Qt::ControlModifier);
        key(Qt::Key_V, Qt::ControlModifier);
    } else if (way == QLatin1String("Cut and Paste in the menu")) {
        trigger("actionCut");
        trigger("actionPaste");
    } else if (way == QLatin1String("Undo in the menu")) {
        wasUndone = true;
        undoUntilNoonIsGone([this] { trigger("actionUndo"); });
    } else if (way == QLatin1String("Ctrl+Z")) {
        wasUndone = true;
        undoUntilNoonIsGone([this] { key(Qt::Key_Z, Qt::ControlModifier); });
    } else if (way == QLatin1String("Delete and Undo in the menu")) {
        trigger("actionDelete");
        trigger("actionUndo");
    } else if (way == QLatin1String("New")) {
        trigger("actionNew");
    } else if (way == QLatin1String("another file opened")) {
        window->loadFrom(file("other.scene"));
    } else {
        const NextDialog question(::press(QMessageBox::No));
        window->closeTab(tabsOf(*window)->indexOf(itsView));
        QVERIFY(question.hasCome());
    }
}

inline void WorstMoment::noteTexts()
{
    textsBefore = otherTexts();
    if (isThere(noon)) {
        noonText = textOf(noon);
        noonIndex = noon->getIndex();
    }
}

inline void WorstMoment::noteEdit(const QGraphicsTextItem *text)
{
    for (OvNode *entry : panel()->ovNodes()) {
        if (Node *shown = scene()->findNodeByIndex(entry->getIndex()); text && descriptionOf(entry) == text)
            text = shown ? descriptionOf(shown) : nullptr;
    }
    for (const Node *node : {dusk.data(), dawn.data(), noon.data()}) {
        if (!text || !isThere(node) || (node->nameItem() != text && descriptionOf(node) != text))
            continue;
        if (node == noon)
            noonText = textOf(noon);
        else
            textsBefore[node->getIndex()] = textOf(node);
    }
    // Noon comes back as another node, and the keyboard with it.
    const Node *again =
        noonIsGone && tabIsThere() ? itsView->nodegraphScene()->findNodeByIndex(noonIndex) : nullptr;
    if (again && text && descriptionOf(again) == text)
        noonText = textOf(again);
}

inline void WorstMoment::go(const QString &way)
{
    noteTexts();
    QCOMPARE(textsBefore.size(), std::size_t(2));
    const bool byKey = way == QLatin1String("Del") || way.startsWith(QLatin1String("Ctrl+"));
    const bool keyIsTaken =
        QApplication::activeModalWidget() || QApplication::activePopupWidget() || editedText();
    QFETCH(const double, scale);
    const SeenAt seen(view(), scale);
    look();
    leave(way);
    look();
    noonIsGone = !isThere(noon);
    if (byKey && keyIsTaken) {
        // The key did what it does in a text, a menu or a dialog.
        QVERIFY(!noonIsGone && noon->isVisible());
        noteEdit(editedText());
    } else if (way == QLatin1String("Ctrl+X")) {
        QVERIFY(!noonIsGone && !noon->isVisible()); // it stays until it is pasted
    } else {
        QVERIFY(noonIsGone);
    }
    if (tabIsThere())
        QCOMPARE(otherTexts(), textsBefore);
}

inline void WorstMoment::goOn()
{
    // What was open may have taken the keyboard along, or have closed the window.
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
    paint();
    letGo();
    if (tabIsThere()) {
        QCOMPARE(otherTexts(), textsBefore);
        // Nothing leads there from a node that is no more.
        QVERIFY(!noonIsGone || !dusk->hasInput() || dusk->prevNode() == dawn);
        undoAndRedo();
    }
    if (tabsOf(*window)->count() == 0)
        buttonOf(*window, "AddNodeGraph_tool_button")->click();
    typeKeys();
    QCOMPARE(scene()->mouseGrabberItem(), nullptr);
    QVERIFY(rubberBandOf(*scene()) && rubberBandOf(*scene())->rect().isNull());
    QVERIFY(linesAreExact(*scene()));
    trigger("actionAdd_Event");
    trigger("actionUndo");
    // A story without an end gets one by being opened.
    if (!scene()->nodes().empty() && !scene()->endOfStoryNode())
        scene()->setEndOfStory(scene()->nodes().front());
    paint();
    saveAndReadBack();
}

/// Somewhere in the history is the node that went, with the texts that it had.
inline void WorstMoment::undoAndRedo() const
{
    QUndoStack &history = *view()->undoStack();
    const int now = history.index();
    const bool hasNewEdit = dusk->hasInput();
    bool noonIsBack = hasText(noonText);
    QFETCH(const double, scale);
    const SeenAt seen(view(), scale);
    while (history.canUndo()) {
        trigger("actionUndo");
        QApplication::processEvents(); // paints
        noonIsBack = noonIsBack || hasText(noonText);
        QCOMPARE(otherTexts(), textsBefore);
    }
    look();
    while (history.canRedo()) {
        trigger("actionRedo");
        QApplication::processEvents();
        noonIsBack = noonIsBack || hasText(noonText);
        QCOMPARE(otherTexts(), textsBefore);
    }
    look();
    // An edit that was made after the undoing, by letting go of a line over Dusk, has taken its place.
    QVERIFY(noonIsBack || (wasUndone && hasNewEdit));
    while (history.index() > now)
        trigger("actionUndo");
    QCOMPARE(otherTexts(), textsBefore);
}

/// What is typed changes the text that has the keyboard and no other.
inline void WorstMoment::typeKeys() const
{
    const QPointer<QGraphicsTextItem> text = editedText();
    const QString before = text ? text->toPlainText() : QString();
    const Texts others = otherTexts();
    key(Qt::Key_Q);
    key(Qt::Key_Return);
    key(Qt::Key_Backspace);
    if (text)
        QVERIFY(text->toPlainText() != before && text->toPlainText().contains(QLatin1Char('q')));
    else
        QCOMPARE(otherTexts(), others);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Y, Qt::ControlModifier);
}

inline void WorstMoment::saveAndReadBack() const
{
    std::vector<QStringList> titles;
    for (const NodegraphView *each : window->views())
        titles.push_back(titlesOf(each->nodegraphScene()));
    window->saveTo(file("saved.scene"));
    const QByteArray saved = readFile(file("saved.scene"));
    window->loadFrom(file("saved.scene"));
    QCOMPARE(window->views().size(), titles.size());
    for (std::size_t i = 0; i < titles.size(); ++i)
        QCOMPARE(titlesOf(sceneOf(*window, int(i))), titles[i]);
    window->saveTo(file("again.scene"));
    QCOMPARE(readFile(file("again.scene")).toHex(), saved.toHex());
}
