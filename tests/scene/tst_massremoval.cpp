#include "scene/massremoval.h"

#include "items/promptscene.h"
#include "support/testsupport.h"

#include <QGraphicsRectItem>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// Writes down when it leaves its canvas.
class Guest : public QGraphicsRectItem
{
public:
    Guest(QString guestName, QStringList &departures) : name(std::move(guestName)), gone(departures) {}

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override
    {
        if (change == ItemSceneHasChanged && !scene())
            gone << name;
        return QGraphicsRectItem::itemChange(change, value);
    }

private:
    QString name;
    QStringList &gone;
};

struct House
{
    PromptScene canvas;
    MassRemoval removal{canvas};
    QStringList gone;
    std::vector<std::unique_ptr<Guest>> guests;

    House()
    {
        for (const QString &name : {u"first"_s, u"second"_s, u"third"_s, u"fourth"_s}) {
            guests.push_back(std::make_unique<Guest>(name, gone));
            removal.bringIn(guests.back().get());
        }
    }
    Guest *operator[](std::size_t i) const { return guests[i].get(); }
};

} // namespace

class tst_MassRemoval : public TestCase
{
    Q_OBJECT

private slots:
    void whoeverComesIsOnTheCanvas();
    void oneAloneLeavesAtOnce();
    void togetherTheyLeaveAtTheEndAndTheLastComerFirst();
    void theOutermostEndCounts();
    void whoComesAgainCountsAsNew();
    void whoeverStaysIsLeftAlone();
};

void tst_MassRemoval::whoeverComesIsOnTheCanvas()
{
    const House house;
    QCOMPARE(house.canvas.items(Qt::AscendingOrder),
             (QList<QGraphicsItem *>{house[0], house[1], house[2], house[3]}));
    QCOMPARE(house.gone, QStringList());
}

void tst_MassRemoval::oneAloneLeavesAtOnce()
{
    House house;
    house.removal.takeOut(house[1]);
    QCOMPARE(house.gone, QStringList{u"second"_s});
    QCOMPARE(house[1]->scene(), nullptr);
    house.removal.takeOut(house[0]);
    QCOMPARE(house.gone, (QStringList{u"second"_s, u"first"_s}));
}

void tst_MassRemoval::togetherTheyLeaveAtTheEndAndTheLastComerFirst()
{
    House house;
    {
        const MassRemoval::Together together(house.removal);
        for (const std::size_t i : {1, 3, 0, 2})
            house.removal.takeOut(house[i]);
        QCOMPARE(house.gone, QStringList());
        QCOMPARE(house[0]->scene(), &house.canvas);
    }
    QCOMPARE(house.gone, (QStringList{u"fourth"_s, u"third"_s, u"second"_s, u"first"_s}));
    QVERIFY(house.canvas.items().isEmpty());
}

void tst_MassRemoval::theOutermostEndCounts()
{
    House house;
    {
        const MassRemoval::Together outer(house.removal);
        {
            const MassRemoval::Together inner(house.removal);
            house.removal.takeOut(house[0]);
        }
        QCOMPARE(house.gone, QStringList());
        house.removal.takeOut(house[1]);
    }
    QCOMPARE(house.gone, (QStringList{u"second"_s, u"first"_s}));
    // Afterwards nothing waits any more, and nobody leaves twice.
    house.removal.takeOut(house[2]);
    QCOMPARE(house.gone, (QStringList{u"second"_s, u"first"_s, u"third"_s}));
    {
        const MassRemoval::Together again(house.removal);
    }
    QCOMPARE(house.gone.size(), 3);
}

void tst_MassRemoval::whoComesAgainCountsAsNew()
{
    House house;
    house.removal.takeOut(house[0]);
    house.removal.bringIn(house[0]);
    house.gone.clear();
    {
        const MassRemoval::Together together(house.removal);
        house.removal.takeOut(house[0]);
        house.removal.takeOut(house[3]);
    }
    QCOMPARE(house.gone, (QStringList{u"first"_s, u"fourth"_s}));
}

void tst_MassRemoval::whoeverStaysIsLeftAlone()
{
    House house;
    {
        const MassRemoval::Together together(house.removal);
        house.removal.takeOut(house[2]);
    }
    QCOMPARE(house.canvas.items(Qt::AscendingOrder), (QList<QGraphicsItem *>{house[0], house[1], house[3]}));
}

QTEST_MAIN(tst_MassRemoval)
#include "tst_massremoval.moc"
