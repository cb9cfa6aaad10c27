#pragma once

#include <QObject>
#include <QString>

class MainWindow;
class Node;
class NodegraphScene;
class NodegraphView;
class OverViewerScene;
class QGraphicsView;

/// Who feeds whom in a story.
enum class StoryShape {
    chain,             // each event the next one
    pairsBehindAChain, // half of the events are a chain, whose last one feeds pairs; a pair's end is stored
                       // first
};

/// Writes a scene file with one tab: so many events, 300 characters each, a hundred in a row.
void writeStory(const QString &path, int events, StoryShape shape = StoryShape::chain);

/// The program's window with a story in it, on a screen of its usual size.
class StoryWindow : public QObject
{
public:
    StoryWindow();
    ~StoryWindow() override;

    MainWindow &window() { return *main; }
    NodegraphView *view() const;
    NodegraphScene *scene() const;
    OverViewerScene *panel() const;
    QGraphicsView *panelView() const;
    Node *node(double part) const; // 0 the first, 1 the last

    /// Until whatever was changed is on the screen, the canvas and the panel both.
    void show();
    /// Looks at a node at 100 %.
    void lookAt(Node *node);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    MainWindow *main;
    int canvasPaints = 0;
    int panelPaints = 0;
};
