#include "app/contrast.h"
#include "items/eventdata.h"
#include "items/itemtest.h"
#include "items/node.h"
#include "items/nodedata.h"
#include "items/socket.h"
#include "items/stlineedit.h"
#include "support/testsupport.h"

// How the end of the story is to be seen, whatever else is marked.

class tst_Node_EndMark : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        failOnWarnings();
        scene = std::make_unique<QGraphicsScene>();
        node = new Node(0);
        scene->addItem(node);
    }
    void cleanup()
    {
        scene.reset();
        flushDeferredDeletes();
    }

    void endStandsOut_data() { addStates(); }
    void endStandsOut();
    void markIsAPartOfTheBody_data() { addStates(); }
    void markIsAPartOfTheBody();
    void onlyTheEndHasAMark_data() { addStates(); }
    void onlyTheEndHasAMark();
    void markIsSeenFromFarAway_data();
    void markIsSeenFromFarAway();
    void markTakesAQuarterOfTheBodyAtMost();
    void markCoversNothing();

private:
    static void addStates()
    {
        QTest::addColumn<bool>("important");
        QTest::addColumn<bool>("selected");
        QTest::newRow("plain") << false << false;
        QTest::newRow("important") << true << false;
        QTest::newRow("selected") << false << true;
        QTest::newRow("important and selected") << true << true;
    }
    void setState(bool end)
    {
        QFETCH(const bool, important);
        QFETCH(const bool, selected);
        node->setIsEndOfStory(end);
        node->setImportant(important);
        node->setSelected(selected);
    }
    /// The node as it is painted at that scale, on nothing.
    QImage picture(double scale = 1, bool smooth = false) const
    {
        const QRectF area = node->sceneBoundingRect();
        QImage image((area.size() * scale).toSize(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing, smooth);
        scene->render(&painter, QRectF(QPointF(), QSizeF(image.size())), area);
        return image;
    }
    /// The column in the middle of the picture, from the lower edge upwards.
    static QList<QColor> columnOf(const QImage &image)
    {
        QList<QColor> column;
        for (int y = image.height() - 1; y >= 0; --y)
            column << image.pixelColor(image.width() / 2, y);
        return column;
    }

    std::unique_ptr<QGraphicsScene> scene;
    Node *node = nullptr;
};

// The end of the story that was important too looked as any important event.
void tst_Node_EndMark::endStandsOut()
{
    setState(true);
    const QList<QColor> column = columnOf(picture());
    const QColor body = node->bodyColor();
    QCOMPARE(column.at(0), body);
    int marked = 0;
    for (int i = 1; i < 12; ++i)
        marked += contrast(column.at(i), body) >= discernible ? 1 : 0;
    QCOMPARE(marked, 5);
}

void tst_Node_EndMark::markIsAPartOfTheBody()
{
    setState(true);
    const QImage image = picture();
    const QColor mark = columnOf(image).at(5);
    QVERIFY(mark != node->bodyColor());
    QRect bar;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == mark)
                bar |= QRect(x, y, 1, 1);
        }
    }
    // Beyond it there is the body, which it stands out from, and not the canvas.
    const QRect around = bar.adjusted(-1, -1, 1, 1);
    QVERIFY(image.rect().contains(around));
    for (int x = around.left(); x <= around.right(); ++x) {
        QCOMPARE(image.pixelColor(x, around.top()), node->bodyColor());
        QCOMPARE(image.pixelColor(x, around.bottom()), node->bodyColor());
    }
    QVERIFY(bar.width() > image.width() * 9 / 10);
}

void tst_Node_EndMark::onlyTheEndHasAMark()
{
    setState(false);
    const QList<QColor> column = columnOf(picture());
    for (int i = 0; i < 9; ++i)
        QCOMPARE(column.at(i), node->bodyColor());
}

void tst_Node_EndMark::markIsSeenFromFarAway_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("50 %") << 0.5;
    QTest::newRow("20 %") << 0.2;
    QTest::newRow("10 %") << 0.1;
    QTest::newRow("5 %") << 0.05;
}

void tst_Node_EndMark::markIsSeenFromFarAway()
{
    QFETCH(const double, scale);
    node->setImportant(true);
    const QList<QColor> before = columnOf(picture(scale));
    node->setIsEndOfStory(true);
    const QList<QColor> column = columnOf(picture(scale));
    QCOMPARE(column.size(), before.size());
    int marked = 0;
    for (int i = 0; i < qMin(5, int(column.size())); ++i)
        marked += contrast(column.at(i), before.at(i)) >= discernible ? 1 : 0;
    QVERIFY2(marked >= 1, qPrintable(QString::number(marked)));
}

// Which is so little there that only what the edges of the mark mix in tells how high it is.
void tst_Node_EndMark::markTakesAQuarterOfTheBodyAtMost()
{
    node->setImportant(true);
    const QList<QGraphicsItem *> children = node->childItems();
    for (QGraphicsItem *child : children)
        child->hide();
    constexpr double scale = 0.04;
    const QList<QColor> before = columnOf(picture(scale, true));
    node->setIsEndOfStory(true);
    const QList<QColor> column = columnOf(picture(scale, true));
    const QColor mark = columnOf(picture()).at(5);
    double covered = 0;
    for (int i = 0; i < column.size(); ++i)
        covered +=
            (before.at(i).greenF() - column.at(i).greenF()) / (node->bodyColor().greenF() - mark.greenF());
    const double part = covered / (node->boundingRect().height() * scale);
    QVERIFY2(part > 0.23 && part < 0.27, qPrintable(QString::number(part)));
}

void tst_Node_EndMark::markCoversNothing()
{
    STLineEdit *text = node->payload()->eventContent()->descriptionItem();
    text->setText(QString(20, u'\n')); // whatever its length
    const double barTop = node->sceneBoundingRect().bottom() - 8;
    QVERIFY(text->sceneBoundingRect().bottom() <= barTop);
    for (const Socket *socket : {node->inSocket(), node->outSocket()})
        QVERIFY(socket->sceneBoundingRect().bottom() <= barTop);
}

QTEST_MAIN(tst_Node_EndMark)
#include "tst_node_endmark.moc"
